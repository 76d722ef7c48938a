#pragma once

#include <boost/asio/io_context.hpp>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "xr/com/client_port.h"
#include "xr/com/transport/alarm.h"
#include "xr/com/transport/call_table.h"
#include "xr/com/transport/counted_warnings.h"
#include "xr/com/transport/datagram_reader.h"
#include "xr/com/transport/event_sinks.h"
#include "xr/com/transport/instance_key.h"
#include "xr/com/transport/known_instances.h"
#include "xr/com/transport/sd_channel.h"
#include "xr/com/transport/subscription_book.h"
#include "xr/com/transport/tcp_link.h"
#include "xr/com/wire/deployment.h"

namespace xr::com::transport {

/// What the ports of all instances share; it outlives them.
struct Port_environment {
  boost::asio::io_context& io;
  const wire::Deployment& deployment;
  Sd_channel& discovery;
  Receive_buffer& buffer;
  Counted_warnings& warnings;
};

/// The client's end of one instance: its two sockets, the calls under way and the subscriptions. It stays over loss and return.
///
/// The operations of `Client_port` may be called on any thread, all others on the transport thread. The transport keeps every port until
/// its thread has ended, so what runs there may refer to the port plainly.
class Service_port final : public cpp_binding::proxy::Client_port, public std::enable_shared_from_this<Service_port> {
 public:
  using Method_ref = cpp_binding::proxy::Method_ref;
  using Event_sink = cpp_binding::proxy::Event_sink;
  using Reply = cpp_binding::proxy::Reply;

  /// `runtime` owns the environment. `offer` is where the instance was when it was found, so that calls are possible at once.
  /// @throws Transport_exception if no socket can be had.
  Service_port(std::shared_ptr<void> runtime, Port_environment environment, const wire::Service_deployment& service, Instance_key key,
               const Offer& offer);

  const std::string& service_name() const override { return service_.name; }
  const qe::com::runtime::Instance_id& instance() const override { return instance_; }
  bool is_available(Method_ref method) const override;
  void subscribe(std::uint16_t field, std::weak_ptr<Event_sink> sink) override;
  void unsubscribe(std::uint16_t field, const Event_sink* sink) override;
  std::unique_ptr<cpp_binding::proxy::Pending_call> call(Method_ref method, cpp_binding::proxy::Shared_payload request,
                                                         std::function<void(Reply)> completion) override;
  void abandon(std::uint16_t session, const Call* call);

  /// Begins to read, and takes up again what an exception has cut short. `offer`: where the instance is now, if it is offered.
  void resume(const Offer* offer);
  /// Queues the ends of all subscriptions.
  void end_subscriptions();
  /// Ends everything else; the port then behaves as one whose instance is lost.
  void stop();

  void offered(const Offer& offer);
  void lost();
  void subscription_answered(const wire::Sd_entry& ack, const wire::Endpoint& peer);

  /// One message of the instance, over TCP or in a datagram from `sender`.
  void received(const wire::Message& message, const wire::Endpoint* sender);

 private:
  /// Where calls can go now.
  struct Reach {
    std::optional<wire::Endpoint> udp;
    bool tcp = false;
  };

  // Calls (service_port_calls.cpp)
  const wire::Field_deployment& field_of(std::uint16_t field) const;
  std::uint16_t method_of(Method_ref method) const;
  bool is_available_locked(bool reliable) const { return reliable ? reach_.tcp : reach_.udp.has_value(); }
  boost::system::error_code send(const Call& call, std::uint16_t session, const std::vector<unsigned char>& payload);
  void answered(const wire::Message& message, const wire::Endpoint* sender, bool whole);
  void end_gets(unsigned char code, std::optional<bool> reliable = std::nullopt);
  void expire_calls();
  void watch_calls();

  // Life of the instance and its messages (service_port.cpp)
  void settle(const Offer& offer);
  void state_changed(std::uint16_t field, Subscription_book::State state);
  void datagram_received(wire::Bytes datagram, const wire::Endpoint& sender);
  void notified(const wire::Message& message);
  void take_tcp(const std::optional<wire::Endpoint>& endpoint);
  void tcp_up(const wire::Endpoint& local);
  void tcp_down();
  void warn(Fault fault, const char* reason, const wire::Endpoint* sender);

  // Subscriptions (service_port_subscriptions.cpp)
  void send_due();
  void wait_renewal();
  void renew();
  bool join_group(const wire::Endpoint& group);
  void end_subscription(std::uint16_t field);
  wire::Sd_entry subscribe_entry(std::uint16_t field, std::uint32_t ttl) const;
  bool can_subscribe(std::uint16_t field) const;

  const std::shared_ptr<void> runtime_;  // first: the last to go
  const Port_environment environment_;
  const wire::Service_deployment& service_;
  const Instance_key key_;
  const qe::com::runtime::Instance_id instance_;
  wire::Endpoint udp_local_;
  std::shared_ptr<Datagram_reader> udp_;
  Event_sinks sinks_;

  mutable std::mutex mutex_;  // guards the table of pending calls and where calls can go
  Call_table calls_;
  Reach reach_;
  bool watching_calls_ = false;

  // The transport thread's own
  std::optional<Offer> offer_;
  Tcp_link tcp_;
  std::optional<wire::Endpoint> tcp_local_;
  Subscription_book subscriptions_;
  bool stopped_ = false;
  Alarm renewal_;
  Alarm call_expiry_;
  std::vector<std::pair<wire::Endpoint, std::shared_ptr<Datagram_reader>>> groups_;
  std::vector<unsigned char> payload_;  // of the present notification; keeps its room
};

}  // namespace xr::com::transport
