#pragma once

#include "model/names.h"
#include "tools/vehicle/values/bad_input.h"

#include <nlohmann/json.hpp>

#include <array>
#include <cstdint>
#include <limits>
#include <string>
#include <type_traits>
#include <vector>

namespace vehicle {

using Uuid16 = std::array<unsigned char, 16>;

/// Each of them throws BadInput for a value of another kind or out of range.
std::uint64_t UnsignedFromJson(const nlohmann::json& value, std::uint64_t maximum, const Place& place);
/// A number, or one of the texts "nan", "inf" and "-inf", which JSON has no number for.
float FloatFromJson(const nlohmann::json& value, const Place& place);
bool BoolFromJson(const nlohmann::json& value, const Place& place);
std::string TextFromJson(const nlohmann::json& value, const Place& place);
Uuid16 UuidFromJson(const nlohmann::json& value, const Place& place);

nlohmann::json FloatToJson(float value);
std::string UuidToText(const Uuid16& uuid);

template <class T>
concept Reference = requires(T& reference) {
  reference.idPart1, reference.idPart2, reference.idPart3, reference.uuid;
};

template <class T>
struct IsVector : std::false_type {};
template <class T>
struct IsVector<std::vector<T>> : std::true_type {};

/// One member of a record: enumerations by their word, or by a number where there is no word for it.
template <class T>
T ValueFromJson(const nlohmann::json& value, const Place& place) {
  if constexpr (std::is_enum_v<T>) {
    if (!value.is_string()) return static_cast<T>(UnsignedFromJson(value, std::numeric_limits<std::underlying_type_t<T>>::max(), place));
    const auto& words = trov::Names<T>::Inverse();
    const auto found = words.find(value.template get_ref<const std::string&>());
    if (found == words.end()) throw BadInput{place, "unknown word " + value.dump()};
    return found->second;
  } else if constexpr (std::is_same_v<T, bool>) {
    return BoolFromJson(value, place);
  } else if constexpr (std::is_integral_v<T>) {
    return static_cast<T>(UnsignedFromJson(value, std::numeric_limits<T>::max(), place));
  } else if constexpr (std::is_same_v<T, float>) {
    return FloatFromJson(value, place);
  } else if constexpr (std::is_same_v<T, std::string>) {
    return TextFromJson(value, place);
  } else if constexpr (std::is_same_v<T, Uuid16>) {
    return UuidFromJson(value, place);
  } else if constexpr (Reference<T>) {
    T reference{};
    if (!value.is_object()) throw BadInput{place, "a reference is an object of idPart1, idPart2, idPart3 and uuid"};
    const auto part = [&](const char* name) {
      return static_cast<std::uint16_t>(UnsignedFromJson(value.value(name, 0), 0xFFFF, place / name));
    };
    reference.idPart1 = part("idPart1");
    reference.idPart2 = part("idPart2");
    reference.idPart3 = part("idPart3");
    if (value.contains("uuid")) reference.uuid = UuidFromJson(value["uuid"], place / "uuid");
    return reference;
  } else {
    static_assert(IsVector<T>::value, "a member of an unknown kind");
    if (!value.is_array()) throw BadInput{place, "an array is expected"};
    T items;
    for (std::size_t i = 0; i < value.size(); ++i) items.push_back(ValueFromJson<typename T::value_type>(value[i], place / i));
    return items;
  }
}

template <class T>
nlohmann::json ValueToJson(const T& value) {
  if constexpr (std::is_enum_v<T>) {
    const auto& words = trov::Names<T>::Direct();
    const auto found = words.find(value);
    if (found != words.end()) return found->second;
    return static_cast<std::underlying_type_t<T>>(value);
  } else if constexpr (std::is_same_v<T, float>) {
    return FloatToJson(value);
  } else if constexpr (std::is_same_v<T, Uuid16>) {
    return UuidToText(value);
  } else if constexpr (Reference<T>) {
    return {{"idPart1", value.idPart1}, {"idPart2", value.idPart2}, {"idPart3", value.idPart3}, {"uuid", UuidToText(value.uuid)}};
  } else if constexpr (IsVector<T>::value) {
    auto items = nlohmann::json::array();
    for (const auto& item : value) items.push_back(ValueToJson(item));
    return items;
  } else {
    return value;
  }
}

}  // namespace vehicle
