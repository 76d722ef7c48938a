#include "binding/incidents/service_incidents.h"

namespace xr::com::cpp_binding::log::incidents {

void to_json(json::Json_text& json, const Find_service_result& incident) {
  detail::put_identity(json, "Find_service_result", incident.identity);
  detail::put_handles(json, "4_service_handles", incident.handles);
}

void to_json(json::Json_text& json, const Find_service_handler_exception& incident) {
  detail::put_identity(json, "Find_service_handler_exception", incident.identity);
}

void to_json(json::Json_text& json, const Find_service_handler_performance& incident) {
  detail::put_identity(json, "Find_service_handler_performance", incident.identity);
  detail::put_number(json, "4_time", static_cast<std::int64_t>(incident.time));
}

void to_json(json::Json_text& json, const Service_proxy_constructed& incident) {
  detail::put_identity(json, "Service_proxy_constructed", incident.identity);
  detail::put_flag(json, "4_struct4bytes", incident.struct4bytes);
  detail::put_flag(json, "5_utf8simple", incident.utf8simple);
}

}  // namespace xr::com::cpp_binding::log::incidents
