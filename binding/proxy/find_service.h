#pragma once

#include "xr/com/find_service_handle.h"
#include "xr/com/runtime/service_instance.h"

#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace ara::log {
class Logger;
}

namespace xr::com::cpp_binding::proxy {

using Instances_handler = std::function<void(std::vector<runtime::Service_instance>)>;

/// Looks for instances of a service by the runtime's finder; see `Proxy_impl::start_find_service`.
Find_service_handle start_find(std::string_view service, const std::string& instance, Instances_handler handler, ara::log::Logger& logger);

/// One report of a find: incidents, deadline, and the border that no exception of the handler passes. False if there was one.
bool report_instances(std::string_view service, const std::string& instance, const Instances_handler& handler,
                      std::vector<runtime::Service_instance> found);

}  // namespace xr::com::cpp_binding::proxy
