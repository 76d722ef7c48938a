#pragma once

#include "binding/proxy/find_service.h"
#include "xr/com/instance_id.h"

#include <functional>
#include <string>
#include <utility>
#include <vector>

namespace xr::com::cpp_binding::proxy {

/// Finding instances of a service, from which its proxies are made. `Service` is the generated description.
template <class Service>
class Proxy_impl {
 public:
  /// One found instance, from which a proxy is made. Copyable; stays valid when the instance goes.
  class Handle_type {
   public:
    explicit Handle_type(runtime::Service_instance instance) : instance_{std::move(instance)} {}

    const qe::com::runtime::Instance_id& instance() const { return instance_.instance; }
    const runtime::Service_instance& service_instance() const { return instance_; }

   private:
    runtime::Service_instance instance_;
  };

  /// Calls the handler with the whole list of offered instances, at once if there are any, and at each change of the list; on the
  /// find thread, never twice at a time. `instance` is an instance's text, or "*" for any. Destroying the result ends the find.
  /// @throws std::logic_error when the runtime does not live.
  static Find_service_handle start_find_service(std::function<void(std::vector<Handle_type>)> handler, const std::string& instance,
                                                ara::log::Logger& logger) {
    return start_find(
        Service::kName, instance,
        [handler = std::move(handler)](std::vector<runtime::Service_instance> found) {
          std::vector<Handle_type> handles;
          handles.reserve(found.size());
          for (auto& each : found) handles.emplace_back(std::move(each));
          handler(std::move(handles));
        },
        logger);
  }
};

}  // namespace xr::com::cpp_binding::proxy
