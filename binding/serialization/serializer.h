#pragma once

#include "binding/serialization/deserialize_dispatcher.h"
#include "binding/serialization/serialize_dispatcher.h"

#include <cstddef>
#include <vector>

namespace xr::com::someip::serialization {

/// Bytes of a field's value on the wire. Fails as `serialize`.
template <class T>
std::size_t serialized_size(const std::vector<T>& field, const Serialization_properties& properties) {
  return detail::untagged_size(field, properties);
}

/// Appends a field's value: length in bytes, then the records back to back (AUTOSAR PRS_SOMEIP, dynamic arrays of structs).
///
/// All checks come first: on failure (`std::overflow_error`, `std::invalid_argument`, `std::runtime_error`) nothing is appended.
template <class T>
void serialize(std::vector<unsigned char>& bytes, const std::vector<T>& field, const Serialization_properties& properties) {
  const auto offset = bytes.size();
  bytes.resize(offset + serialized_size(field, properties));
  detail::Write_cursor cursor{bytes.data() + offset, properties.is_little_endian()};
  detail::write_untagged(cursor, field, properties);
}

/// Appends one tagged member: tag, length field if the wire type has one, body. Fails as `serialize`.
template <class T>
void serialize_with_tag(std::vector<unsigned char>& bytes, const T& value, Structure_tag tag, const Serialization_properties& properties) {
  detail::SizeAccumulator accumulator{properties};
  accumulator.add(value, tag);
  const auto offset = bytes.size();
  bytes.resize(offset + accumulator.size());
  detail::Write_cursor cursor{bytes.data() + offset, properties.is_little_endian()};
  detail::Custom_type_serialize_dispatcher{cursor, properties}.write(value, tag);
}

/// Decodes a field's value from the begin of the payload. Fails with a standard exception and delivers nothing then.
template <class T>
std::vector<T> deserialize(const std::vector<unsigned char>& payload, const Serialization_properties& properties) {
  Read_buffer buffer{payload};
  std::vector<T> field;
  deserialize_without_tag(buffer, field, properties);
  return field;
}

}  // namespace xr::com::someip::serialization
