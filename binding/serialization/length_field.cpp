#include "binding/serialization/length_field.h"

#include "binding/serialization/write_cursor.h"

namespace xr::com::someip::serialization {

void serialize_length_field_dispatch(std::size_t size, std::size_t value, std::vector<unsigned char>& bytes,
                                     const Serialization_properties& properties) {
  check_length_fits(size, value);
  const auto offset = bytes.size();
  bytes.resize(offset + size);
  detail::Write_cursor{bytes.data() + offset, properties.is_little_endian()}.put_length(size, value);
}

void serialize_member_tag(std::vector<unsigned char>& bytes, Structure_tag tag) {
  bytes.insert(bytes.end(), tag.bytes().begin(), tag.bytes().end());
}

}  // namespace xr::com::someip::serialization
