#include "binding/proxy/find_service.h"

#include "ara/log/logging.h"
#include "binding/incidents/service_incidents.h"
#include "binding/incidents/target.h"
#include "xr/com/execution/deadline_guard.h"
#include "xr/com/runtime/component_singleton.h"

#include <utility>

namespace xr::com::cpp_binding::proxy {
namespace {

using com::log::target::Dlt;
namespace incidents = log::incidents;

constexpr unsigned long kHandlerDeadline = 500;  // milliseconds

void trace_result(const log::Identity& identity, const std::vector<runtime::Service_instance>& found) {
  if (!Dlt::is_log_enabled(incidents::Find_service_result::level)) return;
  std::vector<qe::com::runtime::Service_handle> handles;
  handles.reserve(found.size());
  for (const auto& instance : found) handles.push_back({{instance.service, false}, instance.instance.value()});
  Dlt::trace(incidents::Find_service_result{identity, handles});
}

}  // namespace

bool report_instances(std::string_view service, const std::string& instance, const Instances_handler& handler,
                      std::vector<runtime::Service_instance> found) {
  const log::Identity identity{{service}, instance};
  trace_result(identity, found);
  const Deadline_guard guard{kHandlerDeadline, [&](unsigned long time) {
                               Dlt::trace(incidents::Find_service_handler_performance{identity, time});
                             }};
  try {
    handler(std::move(found));
    return true;
  } catch (...) {  // whatever it was, it ends here: the find goes on, and tells the handler again with the next offer
    Dlt::trace(incidents::Find_service_handler_exception{identity});
    return false;
  }
}

Find_service_handle start_find(std::string_view service, const std::string& instance, Instances_handler handler, ara::log::Logger&) {
  return runtime::Component_singleton::get_service_finder().start_find(
      std::string{service}, instance, [service, instance, handler = std::move(handler)](std::vector<runtime::Service_instance> found) {
        return report_instances(service, instance, handler, std::move(found));
      });
}

}  // namespace xr::com::cpp_binding::proxy
