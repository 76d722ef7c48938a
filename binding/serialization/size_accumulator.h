#pragma once

#include "binding/serialization/length_field.h"
#include "binding/serialization/wire_kinds.h"
#include "model/optional.h"

#include <cstddef>

namespace xr::com::someip::serialization::detail {

template <class T>
std::size_t body_size(const T& value, const Serialization_properties& properties);
template <class Record>
std::size_t record_size(const Record& record, const Serialization_properties& properties);

/// Bytes of a value that has no tag, its own length field included.
template <class T>
[[gnu::always_inline]] inline std::size_t untagged_size(const T& value, const Serialization_properties& properties) {
  const auto fieldSize = own_length_field_size<T>(properties);
  if constexpr (isVector<T>) {
    if (fieldSize == 0) failures::vector_without_length_field();
  }
  const auto size = body_size(value, properties);
  if constexpr (!Scalar<T>) check_length_fits(fieldSize, size);
  return fieldSize + size;
}

/// Record visitor that sums up the bytes of the members. All checks of an encoding happen here, before a byte is written.
class SizeAccumulator {
 public:
  explicit SizeAccumulator(const Serialization_properties& properties) : properties_{properties} {}

  std::size_t size() const { return size_ + fourByteMembers_ * (kTagSize + 4); }

  /// A tagged member; an absent one has no bytes at all.
  template <class T>
  [[gnu::always_inline]] void operator()(const qe::com::optional<T>& member, Structure_tag tag) {
    if constexpr (Scalar<T> && sizeof(T) == 4) {
      if (!has_length_field(tag.wire_type())) {
        fourByteMembers_ += std::size_t{member.has_value()};  // most members: counted without a branch
        return;
      }
    }
    if (member.has_value()) add(*member, tag);
  }

  /// A member without a tag.
  template <class T>
  [[gnu::always_inline]] void operator()(const T& member) {
    size_ += untagged_size(member, properties_);
  }

  template <class T>
  [[gnu::always_inline]] void add(const T& value, Structure_tag tag) {
    const auto size = body_size(value, properties_);
    size_ += kTagSize + size;
    if (!has_length_field(tag.wire_type())) return;
    const auto fieldSize = get_length_field_size_for_wire_type(tag.wire_type(), properties_);
    check_length_fits(fieldSize, size);
    size_ += fieldSize;
  }

 private:
  static constexpr std::size_t kTagSize = sizeof(Structure_tag);

  const Serialization_properties& properties_;
  std::size_t size_ = 0;
  std::size_t fourByteMembers_ = 0;
};

/// Bytes of a value without any length field of its own.
template <class T>
[[gnu::always_inline]] inline std::size_t body_size(const T& value, const Serialization_properties& properties) {
  if constexpr (Scalar<T>) {
    return sizeof(T);
  } else if constexpr (std::is_same_v<T, std::string> || std::is_same_v<T, Uuid16>) {
    return value.size();
  } else if constexpr (isVector<T>) {
    if constexpr (Scalar<typename T::value_type>) return value.size() * sizeof(typename T::value_type);
    std::size_t size = 0;
    for (const auto& element : value) size += untagged_size(element, properties);
    return size;
  } else {
    return record_size(value, properties);
  }
}

/// One flat function per record, so that the sum stays in a register.
template <class Record>
[[gnu::flatten, gnu::noinline]] std::size_t record_size(const Record& record, const Serialization_properties& properties) {
  SizeAccumulator accumulator{properties};
  record.visit(accumulator);
  return accumulator.size();
}

}  // namespace xr::com::someip::serialization::detail
