#pragma once

#include "binding/serialization/size_accumulator.h"
#include "binding/serialization/write_cursor.h"

#include <cstddef>

namespace xr::com::someip::serialization::detail {

template <class T>
void write_body(Write_cursor& cursor, const T& value, const Serialization_properties& properties);
template <class Record>
Write_cursor write_record(Write_cursor cursor, const Record& record, const Serialization_properties& properties);

/// Writes a value that has no tag, its own length field first.
template <class T>
[[gnu::always_inline]] inline void write_untagged(Write_cursor& cursor, const T& value, const Serialization_properties& properties) {
  if constexpr (!Scalar<T>) cursor.put_length(own_length_field_size<T>(properties), body_size(value, properties));
  write_body(cursor, value, properties);
}

/// Record visitor that writes the members which are present, in the declared order.
class Custom_type_serialize_dispatcher {
 public:
  Custom_type_serialize_dispatcher(Write_cursor& cursor, const Serialization_properties& properties)
      : cursor_{cursor}, properties_{properties} {}

  /// A tagged member; an absent one writes nothing, not even its tag.
  template <class T>
  [[gnu::always_inline]] void operator()(const qe::com::optional<T>& member, Structure_tag tag) {
    if (member.has_value()) [[likely]]
      write(*member, tag);
  }

  /// A member without a tag.
  template <class T>
  [[gnu::always_inline]] void operator()(const T& member) {
    write_untagged(cursor_, member, properties_);
  }

  template <class T>
  [[gnu::always_inline]] void write(const T& value, Structure_tag tag) {
    cursor_.put_tag(tag);
    if (has_length_field(tag.wire_type())) {
      cursor_.put_length(get_length_field_size_for_wire_type(tag.wire_type(), properties_), body_size(value, properties_));
    }
    write_body(cursor_, value, properties_);
  }

 private:
  Write_cursor& cursor_;
  const Serialization_properties& properties_;
};

template <class T>
[[gnu::always_inline]] inline void write_body(Write_cursor& cursor, const T& value, const Serialization_properties& properties) {
  if constexpr (Scalar<T>) {
    cursor.put(value);
  } else if constexpr (std::is_same_v<T, std::string> || std::is_same_v<T, Uuid16>) {
    cursor.put_bytes(value.data(), value.size());
  } else if constexpr (isVector<T>) {
    for (const auto& element : value) write_untagged(cursor, element, properties);
  } else {
    cursor = write_record(cursor, value, properties);
  }
}

/// One flat function per record. The cursor goes in and out by value: a reference would be reloaded after every byte written.
template <class Record>
[[gnu::flatten, gnu::noinline]] Write_cursor write_record(Write_cursor cursor, const Record& record,
                                                          const Serialization_properties& properties) {
  Custom_type_serialize_dispatcher dispatcher{cursor, properties};
  record.visit(dispatcher);
  return cursor;
}

}  // namespace xr::com::someip::serialization::detail
