#pragma once

#include "binding/serialization/serialization_properties.h"

#include <string_view>

namespace xr::com::cpp_binding {

/// What the runtime knows of a service: its literal name and how its values lie on the wire.
struct Service_info {
  std::string_view name;
  someip::serialization::Serialization_properties properties;
};

}  // namespace xr::com::cpp_binding
