#include "model/structure_tag.h"

#include <gtest/gtest.h>

namespace {

using xr::com::someip::serialization::Structure_tag;
using xr::com::someip::serialization::Wire_type;

TEST(StructureTag, LiesInWireOrder) {
  constexpr Structure_tag tag{Wire_type::four_byte_length_field, 0x123};

  EXPECT_EQ(tag.bytes()[0], 0x71);
  EXPECT_EQ(tag.bytes()[1], 0x23);
  EXPECT_EQ(tag.data_id(), 0x123);
  EXPECT_EQ(tag.wire_type(), Wire_type::four_byte_length_field);
}

TEST(StructureTag, TheReservedBitIsIgnoredOnReading) {
  constexpr Structure_tag tag{{{0xAF, 0xFF}}};

  EXPECT_EQ(tag.wire_type(), Wire_type::four_bytes);
  EXPECT_EQ(tag.data_id(), 0xFFF);
}

}  // namespace
