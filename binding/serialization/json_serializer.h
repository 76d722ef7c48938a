#pragma once

#include "binding/serialization/wire_kinds.h"
#include "model/optional.h"
#include "model/structure_tag.h"

#include <nlohmann/json_fwd.hpp>

#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <type_traits>
#include <vector>

namespace xr::com::json::serialization {

namespace detail {

// The JSON library is seen by one source only.
void put(nlohmann::ordered_json& to, bool value);
void put(nlohmann::ordered_json& to, std::uint64_t value);
void put(nlohmann::ordered_json& to, std::int64_t value);
void put(nlohmann::ordered_json& to, double value);
void put(nlohmann::ordered_json& to, std::string_view value);
void put(nlohmann::ordered_json& to, std::span<const unsigned char> value);
void put_array(nlohmann::ordered_json& to);
nlohmann::ordered_json& append(nlohmann::ordered_json& to);

}  // namespace detail

/// Record visitor that writes the members which are present as JSON, for the incident log.
///
/// Per member, counted from 0: "0_1WireType", "0_2DataID" and "0_3", the value. Enumerations and UUIDs are numbers.
class Json_serializer {
 public:
  /// Turns `to` into an object.
  explicit Json_serializer(nlohmann::ordered_json& to);

  template <class T>
  void operator()(const qe::com::optional<T>& member, someip::serialization::Structure_tag tag) {
    if (member.has_value()) write(next_value(tag), *member);
  }

  /// A member without a tag.
  template <class T>
  void operator()(const T& member) {
    write(next_value(), member);
  }

  template <class T>
  static void write(nlohmann::ordered_json& to, const T& value);

 private:
  nlohmann::ordered_json& next_value(someip::serialization::Structure_tag tag);
  nlohmann::ordered_json& next_value();

  nlohmann::ordered_json& to_;
  unsigned long number_ = 0;
};

template <class T>
void Json_serializer::write(nlohmann::ordered_json& to, const T& value) {
  if constexpr (std::is_same_v<T, bool>) {
    detail::put(to, value);
  } else if constexpr (std::is_enum_v<T> || std::is_unsigned_v<T>) {
    detail::put(to, static_cast<std::uint64_t>(value));
  } else if constexpr (std::is_floating_point_v<T>) {
    detail::put(to, static_cast<double>(value));
  } else if constexpr (std::is_integral_v<T>) {
    detail::put(to, static_cast<std::int64_t>(value));
  } else if constexpr (std::is_same_v<T, std::string>) {
    detail::put(to, std::string_view{value});
  } else if constexpr (std::is_same_v<T, someip::serialization::Uuid16>) {
    detail::put(to, std::span<const unsigned char>{value});
  } else if constexpr (someip::serialization::isVector<T>) {
    detail::put_array(to);
    for (const auto& element : value) write(detail::append(to), element);
  } else {
    Json_serializer members{to};
    value.visit(members);
  }
}

/// The data of a payload as an extra argument of an incident.
struct Payload_data {
  void (*write)(nlohmann::ordered_json&, const void*);
  const void* data;

  void write_argument(nlohmann::ordered_json& json) const;
};

}  // namespace xr::com::json::serialization
