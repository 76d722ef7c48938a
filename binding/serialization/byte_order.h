#pragma once

#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <type_traits>

namespace xr::com::someip::serialization {

/// What has one fixed place on the wire: integers, floats, `bool` and enumerations.
template <class T>
concept Scalar = std::is_arithmetic_v<T> || std::is_enum_v<T>;

namespace detail {

template <std::size_t size>
using Bits = std::conditional_t<size == 1, std::uint8_t,
                                std::conditional_t<size == 2, std::uint16_t, std::conditional_t<size == 4, std::uint32_t, std::uint64_t>>>;

template <class Unsigned>
constexpr Unsigned swapped(Unsigned bits) {
  if constexpr (sizeof(Unsigned) == 2) {
    return __builtin_bswap16(bits);
  } else if constexpr (sizeof(Unsigned) == 4) {
    return __builtin_bswap32(bits);
  } else if constexpr (sizeof(Unsigned) == 8) {
    return __builtin_bswap64(bits);
  } else {
    return bits;
  }
}

template <class Unsigned>
constexpr Unsigned in_order(Unsigned bits, bool littleEndian) {
  return littleEndian == (std::endian::native == std::endian::little) ? bits : swapped(bits);
}

}  // namespace detail

/// Reads a value out of `sizeof(T)` bytes. A float is its bits; an enumeration takes any number.
template <Scalar T>
inline T load(const unsigned char* from, bool littleEndian) {
  static_assert(sizeof(T) <= 8);
  detail::Bits<sizeof(T)> bits;
  std::memcpy(&bits, from, sizeof bits);
  bits = detail::in_order(bits, littleEndian);
  if constexpr (std::is_same_v<T, bool>) {
    return bits != 0;  // other bit patterns than 0 and 1 are no valid bool
  } else if constexpr (std::is_enum_v<T>) {
    return static_cast<T>(bits);
  } else {
    return std::bit_cast<T>(bits);
  }
}

/// Writes a value as `sizeof(T)` bytes.
template <Scalar T>
inline void store(unsigned char* to, T value, bool littleEndian) {
  static_assert(sizeof(T) <= 8);
  const auto bits = detail::in_order(std::bit_cast<detail::Bits<sizeof(T)>>(value), littleEndian);
  std::memcpy(to, &bits, sizeof bits);
}

}  // namespace xr::com::someip::serialization
