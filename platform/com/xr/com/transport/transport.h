#pragma once

#include <boost/asio/executor_work_guard.hpp>
#include <boost/asio/io_context.hpp>
#include <deque>
#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <thread>

#include "xr/com/find_service_handle.h"
#include "xr/com/rport.h"
#include "xr/com/transport/counted_warnings.h"
#include "xr/com/transport/discovery.h"
#include "xr/com/transport/find_thread.h"
#include "xr/com/transport/sd_channel.h"
#include "xr/com/transport/service_port.h"
#include "xr/com/wire/deployment.h"

namespace xr::com::transport {

/// The SOME/IP client: one thread with discovery and the ports of all instances that an application has opened.
class Transport final : public std::enable_shared_from_this<Transport>, private Instance_observer {
 public:
  /// @throws std::runtime_error if the discovery sockets cannot be opened.
  Transport(wire::Deployment deployment, std::shared_ptr<Find_thread> find_thread);
  ~Transport() override;

  /// Starts the transport thread. Once, on the thread that owns this. @throws std::system_error if there is no thread to be had.
  void start();

  /// Ends subscriptions, calls and connections, and joins the thread, within a second. Ports stay valid; their instances count as lost from
  /// then on. Throws nothing, however little memory there is.
  void stop();

  /// See `Service_finder::start_find`. Any thread.
  cpp_binding::Find_service_handle start_find(const std::string& service, const std::string& instance, Find::Handler handler);

  /// The port of an instance, made at the first call. Any thread. @throws as `Rport` tells.
  std::shared_ptr<Service_port> open_port(Instance_key key, const Offer& offer,
                                          const connector::Service_interface_description& description);

 private:
  void run();
  void serve();
  void end();
  void resume();
  void adopt();
  void resume_later();

  void instance_offered(Instance_key key, const Offer& offer) override;
  void instances_lost() override;
  void subscription_answered(const wire::Sd_entry& ack, const wire::Endpoint& peer) override;
  std::shared_ptr<runtime::Port_source> port_source(Instance_key key, const Offer& offer) override;

  const wire::Deployment deployment_;
  const std::shared_ptr<Find_thread> find_thread_;
  boost::asio::io_context io_{1};
  boost::asio::executor_work_guard<boost::asio::io_context::executor_type> work_;
  Receive_buffer buffer_;
  Counted_warnings warnings_;
  Sd_channel channel_;
  Discovery discovery_;
  std::map<Instance_key, std::shared_ptr<Service_port>> attached_;  // the transport thread's own

  std::mutex mutex_;  // guards the three below
  std::map<Instance_key, std::shared_ptr<Service_port>> ports_;
  std::deque<std::weak_ptr<Find>> new_finds_;  // which discovery does not have yet
  bool stopped_ = false;

  std::thread thread_;
};

}  // namespace xr::com::transport
