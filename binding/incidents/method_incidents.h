#pragma once

#include "ara/log/log_level.h"
#include "binding/incidents/incident_json.h"
#include "binding/incidents/incident_name.h"

namespace xr::com::cpp_binding::log {

template <Incident_name name, ara::log::LogLevel logLevel>
struct Method_incident {
  static constexpr auto level = logLevel;
  Identity identity;
  std::uint16_t methodId;  // the gets by field, then the sets
};

template <Incident_name name, ara::log::LogLevel logLevel>
struct Method_code_incident {
  static constexpr auto level = logLevel;
  Identity identity;
  std::uint16_t methodId;
  int errorCode;
  std::string_view text;
};

template <Incident_name name, ara::log::LogLevel level>
void to_json(json::Json_text& json, const Method_incident<name, level>& incident) {
  detail::put_identity(json, name.view(), incident.identity);
  detail::put_number(json, "4_method_id", incident.methodId);
}

template <Incident_name name, ara::log::LogLevel level>
void to_json(json::Json_text& json, const Method_code_incident<name, level>& incident) {
  detail::put_identity(json, name.view(), incident.identity);
  detail::put_number(json, "4_method_id", incident.methodId);
  detail::put_number(json, "5_error_code", incident.errorCode);
  detail::put_text(json, "6_text", incident.text);
}

namespace incidents {

using ara::log::LogLevel;

// clang-format off
using Method_call_request_tx             = Method_incident<"Method_call_request_tx", LogLevel::kDebug>;
using Method_call_request_err            = Method_code_incident<"Method_call_request_err", LogLevel::kError>;
using Method_call_response_rx            = Method_code_incident<"Method_call_response_rx", LogLevel::kDebug>;
using Method_call_response_invalid_code  = Method_code_incident<"Method_call_response_invalid_code", LogLevel::kError>;
using Method_call_deserializer_exception = Method_code_incident<"Method_call_deserializer_exception", LogLevel::kError>;
using Method_call_request_cancelled      = Method_incident<"Method_call_request_cancelled", LogLevel::kInfo>;
// clang-format on

}  // namespace incidents
}  // namespace xr::com::cpp_binding::log
