#pragma once

#include "binding/serialization/byte_order.h"
#include "binding/serialization/serialization_properties.h"

#include <array>
#include <cstddef>
#include <string>
#include <type_traits>
#include <vector>

namespace xr::com::someip::serialization {

/// A UUID in binary form, never swapped.
using Uuid16 = std::array<unsigned char, 16>;

/// A record whose members are optional and tagged.
template <class T>
concept Tagged_record = requires {
  T::get_tlv_tags();
};

template <class T>
inline constexpr bool isVector = false;
template <class T>
inline constexpr bool isVector<std::vector<T>> = true;

/// Bytes of the length field before a body that has no tag.
template <class T>
constexpr std::size_t own_length_field_size(const Serialization_properties& properties) {
  if constexpr (Scalar<T>) {
    return 0;
  } else if constexpr (std::is_same_v<T, std::string>) {
    return properties.stringLengthFieldSize;
  } else if constexpr (isVector<T> || std::is_same_v<T, Uuid16>) {
    return properties.arrayLengthFieldSize;
  } else {
    return properties.recordLengthFieldSize;
  }
}

}  // namespace xr::com::someip::serialization
