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

/// The tags of a record. Refers to the array that it is made from.
class Tag_list {
 public:
  explicit Tag_list(std::span<const Structure_tag> tags) : tags_{tags} {
    for (const auto tag : tags) {
      if (tag.data_id() < 64) lowIds_ |= std::uint64_t{1} << tag.data_id();
    }
  }

  bool empty() const { return tags_.empty(); }

  bool contains(std::uint16_t dataId) const {
    if (dataId < 64) return (lowIds_ >> dataId & 1U) != 0;  // in practice all ids
    return std::any_of(tags_.begin(), tags_.end(), [dataId](Structure_tag tag) { return tag.data_id() == dataId; });
  }

 private:
  std::span<const Structure_tag> tags_;
  std::uint64_t lowIds_ = 0;
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

inline constexpr std::size_t kAbsent = std::numeric_limits<std::size_t>::max();

/// Where a search ended: before the body of the member found, with its stated length; or with `kAbsent` before a member that
/// the record knows, or at an end.
struct Search_result {
  std::size_t offset;
  std::size_t length;
};

/// Whether the next tag belongs to another member of the record, so that the expected one is absent.
inline bool is_left_out(const Read_buffer& buffer, Structure_tag expected, const Tag_list& tags) {
  const auto next = peek_member_tag(buffer);
  return next.data_id() != expected.data_id() && tags.contains(next.data_id());
}

/// The search for one expected member, step by step. Fails with `std::runtime_error` on another wire type and on a record
/// without tags, with `std::out_of_range` on a length that leaves the buffer.
Search_result search_member(Read_buffer buffer, Structure_tag expected, const Serialization_properties& properties, const Tag_list& tags,
                            std::size_t recordEnd);

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

  /// A member without a tag; it must be there.
  template <class T>
  [[gnu::always_inline]] void operator()(T& member) {
    if (buffer_.offset() >= recordEnd_ && buffer_.remaining() > 0) failures::length_too_small();
    deserialize_without_tag(buffer_, member, properties_);
  }

 private:
  Read_buffer& buffer_;
  const Serialization_properties& properties_;
  const Tag_list& tags_;
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

/// One flat function per record, on copies of position and settings: originals would be reloaded after every write.
template <class Record>
[[gnu::flatten, gnu::noinline]] void read_record(Read_buffer& origin, Record& record, std::size_t length,
                                                 const Serialization_properties& settings) {
  Read_buffer buffer = origin;
  const auto properties = settings;
  const auto end = calc_record_end_offset_or_throw(buffer.offset(), buffer.size(), length);
  if constexpr (Tagged_record<Record>) {
    static const Tag_list tags{Record::get_tlv_tags()};
    Custom_type_deserialize_dispatcher dispatcher{buffer, properties, tags, end};
    record.visit(dispatcher);
  } else {
    const Tag_list none{{}};
    Custom_type_deserialize_dispatcher dispatcher{buffer, properties, none, end};
    record.visit(dispatcher);
    if (buffer.offset() > end) failures::length_too_small();
  }
  origin.seek_to(end);
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
    read_record(buffer, value, length, properties);
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
  if (buffer.remaining() == 0 || buffer.offset() >= recordEnd) return;
  if constexpr (Scalar<T>) {
    T value{};
    if (!has_length_field(expected.wire_type()) && buffer.read_if_behind(expected.bytes(), value, properties.is_little_endian())) {
      member = value;
      return;
    }
  }
  std::size_t length = 0;
  if (buffer.starts_with(expected.bytes())) {  // senders keep the order: the usual case
    buffer.skip(expected.bytes().size());
    length = deserialize_length_field_with_tag(buffer, expected, properties);
  } else if (detail::is_left_out(buffer, expected, tags)) {
    return;
  } else {
    const auto found = detail::search_member(buffer, expected, properties, tags, recordEnd);
    buffer.seek_to(found.offset);
    if (found.length == detail::kAbsent) return;
    length = found.length;
  }
  const auto begin = buffer.offset();
  detail::read_body(buffer, member.emplace(), length, properties);
  detail::finish_body(buffer, begin, length);
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
