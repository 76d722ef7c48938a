#pragma once

#include "binding/serialization/deserialize_dispatcher.h"
#include "binding/serialization/serialize_dispatcher.h"

#include <array>
#include <cstddef>
#include <vector>

namespace xr::com::someip::serialization {

namespace detail {

/// The bytes that a field's value and each of its records take, worked out once for the usual number of records. No heap use.
template <class Record>
class Field_sizes {
 public:
  /// Checks as `serialize`. The field must outlive the sizes, unchanged.
  [[gnu::flatten]] Field_sizes(const std::vector<Record>& field, const Serialization_properties& properties)
      : field_{field}, properties_{properties} {
    if (properties.arrayLengthFieldSize == 0) failures::vector_without_length_field();
    std::size_t index = 0;
    for (const auto& record : field) {
      SizeAccumulator accumulator{properties};
      record.visit(accumulator);
      const auto size = accumulator.size();
      check_length_fits(properties.recordLengthFieldSize, size);
      if (index < known_.size()) known_[index++] = size;
      body_ += properties.recordLengthFieldSize + size;
    }
    check_length_fits(properties.arrayLengthFieldSize, body_);
  }

  std::size_t body() const { return body_; }
  std::size_t of(std::size_t index) const { return index < known_.size() ? known_[index] : record_size(field_[index], properties_); }

 private:
  const std::vector<Record>& field_;
  const Serialization_properties& properties_;
  std::size_t body_ = 0;
  std::array<std::size_t, 32> known_;  // of the first records
};

/// Writes length and body of each record into the bytes from `position` on. The byte order is a constant in here, since the
/// bigger part of an encoding is numbers.
template <bool littleEndian, class Record>
[[gnu::flatten, gnu::noinline]] void write_records(unsigned char* position, const std::vector<Record>& field,
                                                   const Field_sizes<Record>& sizes, const Serialization_properties& properties) {
  Write_cursor cursor{position, littleEndian};
  Custom_type_serialize_dispatcher dispatcher{cursor, properties};
  std::size_t index = 0;
  for (const auto& record : field) {
    cursor.put_length(properties.recordLengthFieldSize, sizes.of(index++));
    record.visit(dispatcher);
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
  const detail::Field_sizes sizes{field, properties};
  const auto offset = bytes.size();
  bytes.resize(offset + properties.arrayLengthFieldSize + sizes.body());
  const bool littleEndian = properties.is_little_endian();
  auto* const begin = bytes.data() + offset;
  detail::Write_cursor{begin, littleEndian}.put_length(properties.arrayLengthFieldSize, sizes.body());
  const auto write = littleEndian ? &detail::write_records<true, T> : &detail::write_records<false, T>;
  write(begin + properties.arrayLengthFieldSize, field, sizes, properties);
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
