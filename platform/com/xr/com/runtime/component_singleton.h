#pragma once

#include <memory>
#include <string>

#include "xr/com/runtime/service_finder.h"
#include "xr/com/runtime/thread_pool_factory.h"

namespace xr::com::transport {
class Find_thread;
class Transport;
}  // namespace xr::com::transport

namespace xr::com::runtime {

/// Holds the communication runtime alive: transport, find thread and thread pool. At most one lives at a time.
class Component_singleton {
 public:
  /// Reads the deployment and starts the threads. Both arguments belong to the platform's form of this constructor; this runtime
  /// takes its settings from the deployment file alone.
  /// @throws std::runtime_error after one error line, if the deployment file is wrong or the discovery sockets cannot be opened;
  ///         std::logic_error if another one lives.
  Component_singleton(bool, const std::string&);

  /// Ends, in this order, the find thread, the pool (what waits there still runs) and the transport.
  ~Component_singleton();

  Component_singleton(const Component_singleton&) = delete;
  Component_singleton& operator=(const Component_singleton&) = delete;

  /// @throws std::logic_error when no singleton lives.
  static Service_finder& get_service_finder();
  static Thread_pool_factory& get_thread_pool_factory();

 private:
  std::shared_ptr<transport::Find_thread> find_thread_;
  std::shared_ptr<transport::Transport> transport_;
  std::unique_ptr<Service_finder> finder_;
  std::unique_ptr<Thread_pool_factory> pool_factory_;
};

}  // namespace xr::com::runtime
