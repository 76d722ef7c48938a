#pragma once

#include "binding/serialization/json_text.h"
#include "binding/serialization/wire_kinds.h"
#include "model/optional.h"
#include "model/structure_tag.h"

#include <cstdint>
#include <string>
#include <string_view>
#include <type_traits>
#include <vector>

namespace xr::com::json::serialization {

/// Record visitor that writes the members which are present as JSON, for the incident log.
///
/// Per member, counted from 0: "0_1WireType", "0_2DataID" and "0_3", the value. Enumerations and UUIDs are numbers.
class Json_serializer {
 public:
  /// Writes members into the object that `to` has open.
  explicit Json_serializer(Json_text& to) : to_{to} {}

  template <class T>
  void operator()(const qe::com::optional<T>& member, someip::serialization::Structure_tag tag) {
    if (!member.has_value()) return;
    put_tag(tag);
    put_key();
    write(to_, *member);
  }

  /// A member without a tag.
  template <class T>
  void operator()(const T& member) {
    put_key();
    write(to_, member);
  }

  template <class T>
  static void write(Json_text& to, const T& value);

 private:
  void put_tag(someip::serialization::Structure_tag tag);
  /// The key of the member's value; the next member has the next number.
  void put_key();

  Json_text& to_;
  unsigned long number_ = 0;
};

template <class T>
void Json_serializer::write(Json_text& to, const T& value) {
  if constexpr (std::is_same_v<T, bool>) {
    to.value(value);
  } else if constexpr (std::is_enum_v<T> || std::is_unsigned_v<T>) {
    to.value(static_cast<std::uint64_t>(value));
  } else if constexpr (std::is_floating_point_v<T>) {
    to.value(static_cast<double>(value));
  } else if constexpr (std::is_integral_v<T>) {
    to.value(static_cast<std::int64_t>(value));
  } else if constexpr (std::is_same_v<T, std::string>) {
    to.value(std::string_view{value});
  } else if constexpr (someip::serialization::isVector<T> || std::is_same_v<T, someip::serialization::Uuid16>) {
    to.begin_array();
    for (const auto& element : value) write(to, element);
    to.end_array();
  } else {
    to.begin_object();
    Json_serializer members{to};
    value.visit(members);
    to.end_object();
  }
}

/// The data of a payload as an extra argument of an incident.
struct Payload_data {
  void (*write)(Json_text&, const void*);
  const void* data;

  void write_argument(Json_text& json) const;
};

}  // namespace xr::com::json::serialization
