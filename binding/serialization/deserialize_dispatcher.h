#pragma once

#include "binding/serialization/length_field.h"
#include "binding/serialization/read_buffer.h"
#include "binding/serialization/wire_kinds.h"
#include "model/optional.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <span>

namespace xr::com::someip::serialization {

/// The tags of a record.
class Tag_list {
 public:
  explicit Tag_list(std::span<const Structure_tag> tags) : tags_{tags} {}

  bool empty() const { return tags_.empty(); }
  bool contains(std::uint16_t dataId) const {
    return std::any_of(tags_.begin(), tags_.end(), [dataId](Structure_tag tag) { return tag.data_id() == dataId; });
  }

 private:
  std::span<const Structure_tag> tags_;
};

template <class T>
void deserialize_with_tag(Read_buffer& buffer, qe::com::optional<T>& member, Structure_tag expected,
                          const Serialization_properties& properties, const Tag_list& tags, std::size_t recordEnd);

template <class T>
void deserialize_without_tag(Read_buffer& buffer, T& value, const Serialization_properties& properties);

namespace detail {

/// What a record's length says when the record has no length field.
inline constexpr std::size_t kToEndOfBuffer = std::numeric_limits<std::size_t>::max();

/// The offset behind a record that begins at `offset` of a buffer of `size` bytes. Fails with `std::overflow_error` or, when
/// that lies beyond the buffer, `std::out_of_range`.
inline std::size_t calc_record_end_offset_or_throw(std::size_t offset, std::size_t size, std::size_t recordLength) {
  if (recordLength == kToEndOfBuffer) return size;
  if (recordLength > std::numeric_limits<std::size_t>::max() - offset) failures::end_position_overflow();
  if (offset + recordLength > size) failures::end_position_invalid();
  return offset + recordLength;
}

/// Compares what a body took with its stated length: more is a failure, the rest of less is skipped.
inline void finish_body(Read_buffer& buffer, std::size_t begin, std::size_t length) {
  const auto consumed = buffer.offset() - begin;
  if (consumed > length) failures::length_too_small();
  buffer.skip(length - consumed);
}

/// Record visitor that fills the members, in the declared order.
class Custom_type_deserialize_dispatcher {
 public:
  Custom_type_deserialize_dispatcher(Read_buffer& buffer, const Serialization_properties& properties, const Tag_list& tags,
                                     std::size_t recordEnd)
      : buffer_{buffer}, properties_{properties}, tags_{tags}, recordEnd_{recordEnd} {}

  template <class T>
  [[gnu::always_inline]] void operator()(qe::com::optional<T>& member, Structure_tag tag) {
    deserialize_with_tag(buffer_, member, tag, properties_, tags_, recordEnd_);
  }

  /// A member without a tag.
  template <class T>
  [[gnu::always_inline]] void operator()(T& member) {
    deserialize_without_tag(buffer_, member, properties_);
  }

 private:
  Read_buffer& buffer_;
  const Serialization_properties& properties_;
  const Tag_list tags_;
  const std::size_t recordEnd_;
};

/// How many records lie in the next `length` bytes, told by their length fields alone. What a sender claims costs no memory:
/// each record counted has its bytes. `length` lies inside the buffer.
inline std::size_t count_records(Read_buffer buffer, std::size_t length, const Serialization_properties& properties) {
  const auto fieldSize = properties.recordLengthFieldSize;
  if (fieldSize == 0) return 1;
  std::size_t count = 0;
  while (length >= fieldSize) {
    const auto record = deserialize_length_field_dispatch(fieldSize, buffer, properties);
    length -= fieldSize;
    if (record > length) break;
    buffer.skip(record);
    length -= record;
    ++count;
  }
  return count;
}

template <class Vector>
inline void read_elements(Read_buffer& buffer, Vector& value, std::size_t length, const Serialization_properties& properties) {
  using Element = typename Vector::value_type;
  buffer.throw_if_out_of_range(length);
  const auto end = buffer.offset() + length;
  value.clear();
  if constexpr (Scalar<Element>) {
    value.reserve(length / sizeof(Element));
  } else if constexpr (Tagged_record<Element>) {
    value.reserve(count_records(buffer, length, properties));
  }
  while (buffer.offset() < end) deserialize_without_tag(buffer, value.emplace_back(), properties);
}

/// One flat function per record. The buffer goes in and out by value: a reference would be reloaded after every write.
template <class Record>
[[gnu::flatten, gnu::noinline]] Read_buffer read_record(Read_buffer buffer, Record& record, std::size_t length,
                                                        Serialization_properties properties) {
  const auto end = calc_record_end_offset_or_throw(buffer.offset(), buffer.size(), length);
  if constexpr (Tagged_record<Record>) {
    const Tag_list tags{Record::get_tlv_tags()};
    Custom_type_deserialize_dispatcher dispatcher{buffer, properties, tags, end};
    record.visit(dispatcher);
    buffer.seek_to(end);
  } else {
    Custom_type_deserialize_dispatcher dispatcher{buffer, properties, Tag_list{{}}, end};
    record.visit(dispatcher);
    if (buffer.offset() > end) failures::length_too_small();
    buffer.seek_to(end);
  }
  return buffer;
}

/// Reads a body of which `length` bytes are stated. May leave some of them, or take more.
template <class T>
[[gnu::always_inline]] inline void read_body(Read_buffer& buffer, T& value, std::size_t length,
                                             const Serialization_properties& properties) {
  if constexpr (Scalar<T>) {
    value = buffer.read<T>(properties.is_little_endian());
  } else if constexpr (std::is_same_v<T, std::string>) {
    buffer.throw_if_out_of_range(length);
    value.resize(length);
    buffer.copy_to(value.data(), length);
  } else if constexpr (std::is_same_v<T, Uuid16>) {
    if (length < value.size()) failures::length_smaller_than_expected();
    buffer.copy_to(value.data(), value.size());
  } else if constexpr (isVector<T>) {
    read_elements(buffer, value, length, properties);
  } else {
    buffer = read_record(buffer, value, length, properties);
  }
}

}  // namespace detail

/// Looks for one expected member from the present position on, in the bytes before `recordEnd`.
///
/// Tolerates members that it does not know, and members left out; the search goes forward only. Leaves the position behind
/// the member, or, when the member is absent, before the next member that the record knows.
template <class T>
[[gnu::always_inline]] inline void deserialize_with_tag(Read_buffer& buffer, qe::com::optional<T>& member, Structure_tag expected,
                                                        const Serialization_properties& properties, const Tag_list& tags,
                                                        std::size_t recordEnd) {
  while (buffer.remaining() > 0 && buffer.offset() < recordEnd) {
    const auto offset = buffer.offset();
    const auto tag = deserialize_member_tag(buffer);
    if (tag.data_id() == expected.data_id()) {
      const bool bothCarryLength = has_length_field(tag.wire_type()) && has_length_field(expected.wire_type());
      if (tag.wire_type() != expected.wire_type() && !bothCarryLength) failures::wire_type_mismatch();
      const auto length = deserialize_length_field_with_tag(buffer, tag, properties);
      const auto begin = buffer.offset();
      detail::read_body(buffer, member.emplace(), length, properties);
      detail::finish_body(buffer, begin, length);
      return;
    }
    if (tags.contains(tag.data_id())) {
      buffer.seek_to(offset);
      return;
    }
    if (tags.empty()) failures::tag_list_missing();
    buffer.skip(deserialize_length_field_with_tag(buffer, tag, properties));
  }
}

/// Reads a value that has no tag, its own length field first where its kind has one.
template <class T>
[[gnu::always_inline]] inline void deserialize_without_tag(Read_buffer& buffer, T& value, const Serialization_properties& properties) {
  const auto fieldSize = own_length_field_size<T>(properties);
  if constexpr (Scalar<T>) {
    detail::read_body(buffer, value, sizeof(T), properties);
  } else if constexpr (std::is_same_v<T, Uuid16>) {
    // A fixed array may do without a length field.
    const auto length = fieldSize == 0 ? value.size() : deserialize_length_field_dispatch(fieldSize, buffer, properties);
    const auto begin = buffer.offset();
    detail::read_body(buffer, value, length, properties);
    detail::finish_body(buffer, begin, length);
  } else if constexpr (std::is_same_v<T, std::string> || isVector<T>) {
    const auto length = deserialize_length_field_dispatch(fieldSize, buffer, properties);
    const auto begin = buffer.offset();
    detail::read_body(buffer, value, length, properties);
    detail::finish_body(buffer, begin, length);
  } else {
    const auto length = fieldSize == 0 ? detail::kToEndOfBuffer : deserialize_length_field_dispatch(fieldSize, buffer, properties);
    detail::read_body(buffer, value, length, properties);
  }
}

}  // namespace xr::com::someip::serialization
