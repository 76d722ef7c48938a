#include "binding/incidents/field_incidents.h"

#include "binding/incidents/incident_json.h"

namespace ara::com::log::incidents {

namespace detail = xr::com::cpp_binding::log::detail;

void to_json(xr::com::json::Json_text& json, const Field_subscribe& incident) {
  detail::put_identity(json, "Field_subscribe", {{incident.service}, incident.instance.value()});
  detail::put_number(json, "4_event_id", incident.eventId);
}

void to_json(xr::com::json::Json_text& json, const Find_service_start& incident) {
  detail::put_identity(json, "Find_service_start", {{incident.service}, incident.instance});
}

}  // namespace ara::com::log::incidents
