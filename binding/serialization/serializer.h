#pragma once

#include "binding/serialization/deserialize_dispatcher.h"
#include "binding/serialization/serialize_dispatcher.h"

#include <cstddef>
#include <vector>

namespace xr::com::someip::serialization {

namespace detail {

/// The bytes of a field's records, their length fields included. Checks as `serialize`. No heap use.
template <class Record>
[[gnu::flatten, gnu::noinline]] std::size_t field_body_size(const std::vector<Record>& field, const Serialization_properties& settings) {
  const auto properties = settings;  // a copy whose address nobody has stays in registers
  if (properties.arrayLengthFieldSize == 0) failures::vector_without_length_field();
  std::size_t body = 0;
  for (const auto& record : field) {
    SizeAccumulator accumulator{properties};
    record.visit(accumulator);
    check_length_fits(properties.recordLengthFieldSize, accumulator.size());
    body += properties.recordLengthFieldSize + accumulator.size();
  }
  check_length_fits(properties.arrayLengthFieldSize, body);
  return body;
}

/// Writes length and body of each record into the bytes from `position` on. The length goes in last, when the body shows it.
/// The byte order is a constant in here, since the bigger part of an encoding is numbers.
template <bool littleEndian, class Record>
[[gnu::flatten, gnu::noinline]] void write_records(unsigned char* position, const std::vector<Record>& field,
                                                   const Serialization_properties& properties) {
  const auto lengthSize = properties.recordLengthFieldSize;
  Write_cursor cursor{position, littleEndian};
  Custom_type_serialize_dispatcher dispatcher{cursor, properties};
  for (const auto& record : field) {
    auto* const length = cursor.position();
    auto* const body = length + lengthSize;
    cursor = Write_cursor{body, littleEndian};
    record.visit(dispatcher);
    Write_cursor{length, littleEndian}.put_length(lengthSize, static_cast<std::size_t>(cursor.position() - body));
  }
}

}  // namespace detail

/// Bytes of a field's value on the wire. Fails as `serialize`.
template <class T>
std::size_t serialized_size(const std::vector<T>& field, const Serialization_properties& properties) {
  return detail::untagged_size(field, properties);
}

/// Appends a field's value: length in bytes, then the records back to back (AUTOSAR PRS_SOMEIP, dynamic arrays of structs).
///
/// All checks come first: on failure (`std::overflow_error`, `std::invalid_argument`, `std::runtime_error`) nothing is appended.
template <Tagged_record T>
void serialize(std::vector<unsigned char>& bytes, const std::vector<T>& field, const Serialization_properties& properties) {
  const auto body = detail::field_body_size(field, properties);
  const auto offset = bytes.size();
  bytes.resize(offset + properties.arrayLengthFieldSize + body);
  const bool littleEndian = properties.is_little_endian();
  auto* const begin = bytes.data() + offset;
  detail::Write_cursor{begin, littleEndian}.put_length(properties.arrayLengthFieldSize, body);
  const auto write = littleEndian ? &detail::write_records<true, T> : &detail::write_records<false, T>;
  write(begin + properties.arrayLengthFieldSize, field, properties);
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
