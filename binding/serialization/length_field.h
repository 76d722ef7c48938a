#pragma once

#include "binding/serialization/byte_order.h"
#include "binding/serialization/failures.h"
#include "binding/serialization/read_buffer.h"
#include "binding/serialization/serialization_properties.h"
#include "model/structure_tag.h"

#include <cstddef>
#include <cstdint>
#include <limits>
#include <vector>

namespace xr::com::someip::serialization {

/// Whether the wire type carries a length field; below it the size of the body follows from the wire type.
constexpr bool has_length_field(Wire_type wireType) {
  return wireType > Wire_type::eight_bytes;
}

/// Bytes of the length field behind a tag: 0 for the fixed sizes. Wire type 4 takes the configured size, which must then be
/// the same for all three kinds and not 0, else `std::runtime_error` (AUTOSAR COM.PRS_SOMEIP_00215).
inline std::size_t get_length_field_size_for_wire_type(Wire_type wireType, const Serialization_properties& properties) {
  switch (wireType) {
    case Wire_type::one_byte_length_field:
      return 1;
    case Wire_type::two_byte_length_field:
      return 2;
    case Wire_type::four_byte_length_field:
      return 4;
    case Wire_type::configured_length_field:
      break;
    default:
      return 0;
  }
  const auto size = properties.arrayLengthFieldSize;
  if (size == 0 || size != properties.recordLengthFieldSize || size != properties.stringLengthFieldSize) {
    failures::length_field_sizes_differ(properties);
  }
  return size;
}

/// Fails unless a length field of `size` bytes can hold `value`: `std::overflow_error`, or `std::invalid_argument` for a size
/// other than 0, 1, 2 and 4.
inline void check_length_fits(std::size_t size, std::size_t value) {
  switch (size) {
    case 0:
      return;
    case 1:
      if (value > std::numeric_limits<std::uint8_t>::max()) failures::length_does_not_fit();
      return;
    case 2:
      if (value > std::numeric_limits<std::uint16_t>::max()) failures::length_does_not_fit();
      return;
    case 4:
      if (value > std::numeric_limits<std::uint32_t>::max()) failures::length_does_not_fit();
      return;
    default:
      failures::length_field_size_invalid();
  }
}

/// Appends `value` in `size` bytes; nothing for size 0. Fails as `check_length_fits`, with nothing appended.
void serialize_length_field_dispatch(std::size_t size, std::size_t value, std::vector<unsigned char>& bytes,
                                     const Serialization_properties& properties);

/// Reads a length of 1, 2 or 4 bytes; `std::invalid_argument` for any other size.
inline std::size_t deserialize_length_field_dispatch(std::size_t size, Read_buffer& buffer, const Serialization_properties& properties) {
  const bool littleEndian = properties.is_little_endian();
  switch (size) {
    case 1:
      return buffer.read<std::uint8_t>(littleEndian);
    case 2:
      return buffer.read<std::uint16_t>(littleEndian);
    case 4:
      return buffer.read<std::uint32_t>(littleEndian);
    default:
      failures::length_field_size_invalid();
  }
}

/// Bytes of the body behind a tag: known from the wire type, or read.
inline std::size_t deserialize_length_field_with_tag(Read_buffer& buffer, Structure_tag tag, const Serialization_properties& properties) {
  const auto wireType = tag.wire_type();
  if (!has_length_field(wireType)) return std::size_t{1} << static_cast<unsigned>(wireType);
  return deserialize_length_field_dispatch(get_length_field_size_for_wire_type(wireType, properties), buffer, properties);
}

/// Appends the two bytes of the tag.
void serialize_member_tag(std::vector<unsigned char>& bytes, Structure_tag tag);

/// The tag at the present position, which stays.
inline Structure_tag peek_member_tag(Read_buffer buffer) {
  const auto first = buffer.read<std::uint8_t>(false);
  const auto second = buffer.read<std::uint8_t>(false);
  return Structure_tag{{first, second}};
}

inline Structure_tag deserialize_member_tag(Read_buffer& buffer) {
  buffer.throw_if_out_of_range(2);
  const auto first = buffer.read<std::uint8_t>(false);
  const auto second = buffer.read<std::uint8_t>(false);
  return Structure_tag{{first, second}};
}

}  // namespace xr::com::someip::serialization
