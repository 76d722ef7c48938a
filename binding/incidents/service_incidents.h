#pragma once

#include "ara/log/log_level.h"
#include "binding/incidents/incident_json.h"

#include <span>

/// The incidents of finding a service and of making its proxy. What stands behind "instance" in a find is the specifier.
namespace xr::com::cpp_binding::log::incidents {

struct Find_service_result {
  static constexpr auto level = ara::log::LogLevel::kDebug;
  Identity identity;
  std::span<const qe::com::runtime::Service_handle> handles;
};

struct Find_service_handler_exception {
  static constexpr auto level = ara::log::LogLevel::kError;
  Identity identity;
};

struct Find_service_handler_performance {
  static constexpr auto level = ara::log::LogLevel::kWarn;
  Identity identity;
  unsigned long time;  // milliseconds
};

struct Service_proxy_constructed {
  static constexpr auto level = ara::log::LogLevel::kDebug;
  Identity identity;
  bool struct4bytes;  // records have length fields of 4 bytes
  bool utf8simple;    // strings have neither byte order mark nor terminator
};

void to_json(json::Json_text& json, const Find_service_result& incident);
void to_json(json::Json_text& json, const Find_service_handler_exception& incident);
void to_json(json::Json_text& json, const Find_service_handler_performance& incident);
void to_json(json::Json_text& json, const Service_proxy_constructed& incident);

}  // namespace xr::com::cpp_binding::log::incidents
