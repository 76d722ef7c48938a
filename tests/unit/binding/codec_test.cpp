#include "codec_record.h"

#include <gtest/gtest.h>

#include <functional>
#include <ostream>

namespace binding_test {
namespace {

using namespace xr::com::someip::serialization;

TEST(Codec, PutsRecordOnTheWireByteByByte) {
  Sample sample;
  sample.colour = Colour::blue;
  sample.uuid = Uuid16{0x11, 0x22};
  sample.wide = 5;
  EXPECT_EQ(Encoded({sample, Sample{}}), Hex("0000002E"                                        // bytes of both records
                                             "00000026"                                        //
                                             "2000 00000013"                                   //
                                             "7002 00000010 11220000000000000000000000000000"  //
                                             "32A5 0000000000000005"                           //
                                             "00000000"));                                     // nothing present
  EXPECT_EQ(Encoded({}), Hex("00000000"));
}

TEST(Codec, FloatIsItsBitsAndReferenceHasNoTags) {
  Sample sample;
  sample.link = Link{1, 2, Uuid16{7}};
  sample.real = 1.0F;
  EXPECT_EQ(Encoded({sample}), OneRecord("7004 00000018 0001 0002 00000010 07000000000000000000000000000000"
                                         "2007 3F800000"));
}

TEST(Codec, ComesBackUnchangedInEveryOrderAndLengthFieldSize) {
  for (const auto order : {Serialization_properties::kBigEndian, Serialization_properties::kLittleEndian, 0U}) {
    for (const std::size_t size : {1U, 2U, 4U}) {
      Serialization_properties properties;
      properties.byteOrder = order;
      properties.arrayLengthFieldSize = size;
      properties.recordLengthFieldSize = size;
      properties.stringLengthFieldSize = size;
      const std::vector<Sample> field{FullSample(), Sample{}};
      const auto bytes = Encoded(field, properties);
      EXPECT_EQ(bytes.size(), serialized_size(field, properties));
      EXPECT_EQ(Decoded(bytes, properties), field) << order << ' ' << size;
    }
  }
  Serialization_properties open;  // a record without length field reaches to the end of the payload
  open.recordLengthFieldSize = 0;
  EXPECT_EQ(Decoded(Encoded({FullSample()}, open), open), std::vector{FullSample()});
}

TEST(Codec, EachRecordOfManyHasItsOwnLength) {
  std::vector<Sample> field(70);
  for (std::size_t i = 0; i < field.size(); ++i) field[i].text = std::string(i, 'x');
  EXPECT_EQ(Decoded(Encoded(field)), field);
}

TEST(Codec, LittleEndianTurnsNumbersOnly) {
  Serialization_properties little;
  little.byteOrder = Serialization_properties::kLittleEndian;
  Bytes bytes;
  serialize_with_tag(bytes, std::uint32_t{0x0102}, Tag{Tag::Wire_type::four_bytes, 0x101}, little);
  serialize_with_tag(bytes, std::string{"ab"}, Tag{Tag::Wire_type::two_byte_length_field, 1}, little);
  serialize_length_field_dispatch(4, 3, bytes, little);
  EXPECT_EQ(bytes, Hex("2101 02010000  6001 0200 6162  03000000"));
}

struct Tolerated {
  const char* name;
  const char* members;
  std::function<void(Sample&)> expect;
};

void PrintTo(const Tolerated& row, std::ostream* out) {
  *out << row.name;
}

class Tolerance : public testing::TestWithParam<Tolerated> {};

TEST_P(Tolerance, DecodesWhatOtherSendersMayMake) {
  Sample expected;
  GetParam().expect(expected);
  EXPECT_EQ(Decoded(OneRecord(GetParam().members)), std::vector{expected});
}

constexpr auto kColour19 = [](Sample& s) { s.colour = Colour::blue; };
constexpr auto kColourAndReal = [](Sample& s) { s.colour = Colour::blue, s.real = 1.0F; };
constexpr auto kRealOnly = [](Sample& s) { s.real = 1.0F; };
constexpr auto kTextAb = [](Sample& s) { s.text = "ab"; };

INSTANTIATE_TEST_SUITE_P(
    Codec, Tolerance,
    testing::Values(
        Tolerated{"NothingPresent", "", [](Sample&) {}}, Tolerated{"FirstAndLastOnly", "2000 00000013 2007 3F800000", kColourAndReal},
        Tolerated{"ReservedBitSet", "A000 00000013", kColour19},
        Tolerated{"UnknownFixedSize", "2000 00000013 3FFF 0102030405060708 2007 3F800000", kColourAndReal},
        Tolerated{"UnknownWithLengthOf1", "5FFF 02 0102 2007 3F800000", kRealOnly},
        Tolerated{"UnknownWithLengthOf2", "6FFF 0002 0102 2007 3F800000", kRealOnly},
        Tolerated{"UnknownWithConfiguredLength", "4FFF 00000001 01 2007 3F800000", kRealOnly},
        Tolerated{"TwoUnknownInARow", "1FFF 0102 0FFE 01 2007 3F800000", kRealOnly},
        Tolerated{"UnknownAtTheEnd", "2000 00000013 7FFF 00000000", kColour19}, Tolerated{"TextWithLengthOf2", "6001 0002 6162", kTextAb},
        Tolerated{"TextWithLengthOf1", "5001 02 6162", kTextAb}, Tolerated{"TextWithConfiguredLength", "4001 00000002 6162", kTextAb},
        Tolerated{"EmptyText", "7001 00000000", [](Sample& s) { s.text = ""; }},
        Tolerated{"EmptyVector", "7003 00000000", [](Sample& s) { s.colours = std::vector<Colour>{}; }},
        Tolerated{"LongerUuid", "7002 00000014 01000000000000000000000000000000 FFFFFFFF 2007 3F800000",
                  [](Sample& s) { s.uuid = Uuid16{1}, s.real = 1.0F; }},
        Tolerated{"LongerUuidInReference", "7004 0000001C 0001 0002 00000014 07000000000000000000000000000000 FFFFFFFF 2007 3F800000",
                  [](Sample& s) {
                    s.link = Link{1, 2, Uuid16{7}}, s.real = 1.0F;
                  }},
        Tolerated{"LongerReference", "7004 0000001A 0001 0002 00000010 07000000000000000000000000000000 FFFF 2007 3F800000",
                  [](Sample& s) {
                    s.link = Link{1, 2, Uuid16{7}}, s.real = 1.0F;
                  }},
        // The search goes forward only: behind a member that comes too early all earlier ones stay absent.
        Tolerated{"WrongOrder", "2007 3F800000 2000 00000013", kRealOnly},
        Tolerated{"OddBoolIsTrue", "0005 02", [](Sample& s) { s.flag = true; }}),
    [](const auto& row) { return std::string{row.param.name}; });

TEST(Codec, ReadsBackEachMemberByItself) {
  const auto full = FullSample();
  Bytes bytes;
  serialize_with_tag(bytes, *full.text, Sample::kText, {});
  serialize_with_tag(bytes, *full.wide, Sample::kWide, {});
  xr::com::Read_buffer buffer{bytes};
  const Tag_list tags{Sample::get_tlv_tags()};
  qe::com::optional<std::uint64_t> wide;
  qe::com::optional<std::string> text;
  deserialize_with_tag(buffer, wide, Sample::kWide, {}, tags, bytes.size());
  EXPECT_FALSE(wide.has_value());  // the text's tag is known, so the position stays before it
  deserialize_with_tag(buffer, text, Sample::kText, {}, tags, bytes.size());
  deserialize_with_tag(buffer, wide, Sample::kWide, {}, tags, bytes.size());
  EXPECT_EQ(text, full.text);
  EXPECT_EQ(wide, full.wide);
  deserialize_with_tag(buffer, wide, Sample::kWide, {}, tags, bytes.size() + 9);
  EXPECT_EQ(buffer.remaining(), 0U);
}

}  // namespace
}  // namespace binding_test
