#pragma once

#include "ara/log/log_level.h"
#include "binding/incidents/incident_json.h"
#include "binding/incidents/incident_name.h"

namespace xr::com::cpp_binding::log {

template <Incident_name name, ara::log::LogLevel logLevel>
struct Event_incident {
  static constexpr auto level = logLevel;
  Identity identity;
  std::uint16_t eventId;  // alphabetical index of the field
};

template <Incident_name name, ara::log::LogLevel logLevel>
struct Event_text_incident {
  static constexpr auto level = logLevel;
  Identity identity;
  std::uint16_t eventId;
  std::string_view text;
};

template <Incident_name name, ara::log::LogLevel logLevel>
struct Event_time_incident {
  static constexpr auto level = logLevel;
  Identity identity;
  std::uint16_t eventId;
  unsigned long time;  // milliseconds
};

template <Incident_name name, ara::log::LogLevel level>
void to_json(json::Json_text& json, const Event_incident<name, level>& incident) {
  detail::put_identity(json, name.view(), incident.identity);
  detail::put_number(json, "4_event_id", incident.eventId);
}

template <Incident_name name, ara::log::LogLevel level>
void to_json(json::Json_text& json, const Event_text_incident<name, level>& incident) {
  detail::put_identity(json, name.view(), incident.identity);
  detail::put_number(json, "4_event_id", incident.eventId);
  detail::put_text(json, "5_text", incident.text);
}

template <Incident_name name, ara::log::LogLevel level>
void to_json(json::Json_text& json, const Event_time_incident<name, level>& incident) {
  detail::put_identity(json, name.view(), incident.identity);
  detail::put_number(json, "4_event_id", incident.eventId);
  detail::put_number(json, "5_time", static_cast<std::int64_t>(incident.time));
}

namespace incidents {

using ara::log::LogLevel;

// clang-format off
using Event_update_rx                   = Event_incident<"Event_update_rx", LogLevel::kDebug>;
using Event_update_when_not_subscribed  = Event_incident<"Event_update_when_not_subscribed", LogLevel::kError>;
using Event_deserialize_exception       = Event_text_incident<"Event_deserialize_exception", LogLevel::kError>;
using Event_state_handler_exception     = Event_incident<"Event_state_handler_exception", LogLevel::kError>;
using Event_receive_handler_exception   = Event_incident<"Event_receive_handler_exception", LogLevel::kFatal>;
using Event_receive_handler_performance = Event_time_incident<"Event_receive_handler_performance", LogLevel::kWarn>;
using Event_receive_handler             = Event_incident<"Event_receive_handler", LogLevel::kDebug>;
using Event_cache_update                = Event_incident<"Event_cache_update", LogLevel::kInfo>;
// clang-format on

}  // namespace incidents
}  // namespace xr::com::cpp_binding::log
