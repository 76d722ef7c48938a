#include "binding/serialization/deserialize_dispatcher.h"

namespace xr::com::someip::serialization::detail {

Search_result search_member(Read_buffer buffer, Structure_tag expected, const Serialization_properties& properties, const Tag_list& tags,
                            std::size_t recordEnd) {
  while (buffer.remaining() > 0 && buffer.offset() < recordEnd) {
    const auto offset = buffer.offset();
    const auto tag = deserialize_member_tag(buffer);
    if (tag.data_id() == expected.data_id()) {
      const bool bothCarryLength = has_length_field(tag.wire_type()) && has_length_field(expected.wire_type());
      if (tag.wire_type() != expected.wire_type() && !bothCarryLength) failures::wire_type_mismatch();
      const auto length = deserialize_length_field_with_tag(buffer, tag, properties);
      return {buffer.offset(), length};
    }
    if (tags.contains(tag.data_id())) {  // a later member of this record: the expected one was left out
      return {offset, kAbsent};
    }
    if (tags.empty()) failures::tag_list_missing();
    buffer.skip(deserialize_length_field_with_tag(buffer, tag, properties));
  }
  return {buffer.offset(), kAbsent};
}

}  // namespace xr::com::someip::serialization::detail
