#pragma once

#include "binding/serialization/json_text.h"
#include "xr/com/instance_id.h"

#include <string_view>

namespace qe::com::runtime {

/// The name of a service as incidents show it. Refers to text that outlives the incident.
struct Service_id {
  std::string_view name;
  bool literal = true;  // false: the name came from outside, such as from a find
};

/// One offered instance of a service, as incidents show it.
struct Service_handle {
  Service_id service;
  std::string_view instance;
};

/// Each writes one object.
void to_json(xr::com::json::Json_text& json, const Service_id& service);
void to_json(xr::com::json::Json_text& json, const Instance_id& instance);
void to_json(xr::com::json::Json_text& json, const Service_handle& handle);

}  // namespace qe::com::runtime

namespace xr::com::cpp_binding::log {

/// The service proxy that an incident is about. Refers to text that outlives the incident.
struct Identity {
  qe::com::runtime::Service_id service;
  std::string_view instance;
};

}  // namespace xr::com::cpp_binding::log
