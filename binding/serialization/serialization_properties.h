#pragma once

#include <cstddef>
#include <cstdint>

namespace xr::com::someip::serialization {

/// How a service's values lie on the wire. Each service description holds one as a constant.
struct Serialization_properties {
  static constexpr std::uint32_t kLittleEndian = 1234;  // every other byte order means big-endian
  static constexpr std::uint32_t kBigEndian = 4321;

  std::uint64_t reservedWord = 0;
  std::uint32_t byteOrder = kBigEndian;
  std::uint32_t flagWord = 1;
  std::size_t arrayLengthFieldSize = 4;   // bytes: 0, 1, 2 or 4
  std::size_t recordLengthFieldSize = 4;  // the same; 0: a record reaches to the end of the payload
  std::size_t stringLengthFieldSize = 4;  // the same

  constexpr bool is_little_endian() const { return byteOrder == kLittleEndian; }
};

}  // namespace xr::com::someip::serialization
