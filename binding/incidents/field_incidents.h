#pragma once

#include "ara/log/log_level.h"
#include "binding/serialization/json_text.h"
#include "xr/com/instance_id.h"

#include <cstdint>
#include <string_view>

/// The incidents that the users of a proxy write themselves. `service` is the literal name of the service description.
namespace ara::com::log::incidents {

/// Before the subscription of a field.
struct Field_subscribe {
  static constexpr auto level = ara::log::LogLevel::kInfo;
  std::string_view service;
  const qe::com::runtime::Instance_id& instance;
  std::uint16_t eventId;  // alphabetical index of the field
};

/// When a find was started.
struct Find_service_start {
  static constexpr auto level = ara::log::LogLevel::kInfo;
  std::string_view service;
  std::string_view instance;  // the specifier, "*" for any instance
};

void to_json(xr::com::json::Json_text& json, const Field_subscribe& incident);
void to_json(xr::com::json::Json_text& json, const Find_service_start& incident);

}  // namespace ara::com::log::incidents
