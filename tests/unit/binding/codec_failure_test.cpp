#include "codec_record.h"

#include <gtest/gtest.h>

#include <functional>
#include <limits>
#include <ostream>
#include <stdexcept>
#include <typeinfo>

namespace binding_test {
namespace {

using namespace xr::com::someip::serialization;

constexpr auto kReadBeyond = "Read beyond the end of the data buffer";
constexpr auto kInvalidEnd = "Deserialization calculated invalid end position.";
constexpr auto kTooSmall =
    "Violation of [PRS_SOMEIP_00900]: Record length given by sender is too small. This is possibly due to a mismatch between the data "
    "models of sender and receiver.";
constexpr auto kSmaller =
    "Violation of [PRS_SOMEIP_00900]: Record length provided by sender is smaller than expected. This is possibly due to a mismatch "
    "between the data models of sender and receiver.";
constexpr auto kDoesNotFit = "Calculated record length does not fit into configured length field";
constexpr auto kInvalidSize = "Invalid value for length field size.";
constexpr auto kSizesDiffer =
    "Violation of COM.PRS_SOMEIP_00215: All length fields must have same size and not be 0 when wire type 4 is used (";

Serialization_properties Sizes(std::size_t array, std::size_t record, std::size_t string) {
  Serialization_properties properties;
  properties.arrayLengthFieldSize = array;
  properties.recordLengthFieldSize = record;
  properties.stringLengthFieldSize = string;
  return properties;
}

struct Failure {
  const char* name;
  std::function<void()> act;
  const std::type_info& type;
  std::string text;
};

void PrintTo(const Failure& row, std::ostream* out) {
  *out << row.name;
}

template <class Exception>
Failure Fails(const char* name, std::string text, std::function<void()> act) {
  return {name, std::move(act), typeid(Exception), std::move(text)};
}
template <class Exception>
Failure Refused(const char* name, const char* members, std::string text) {
  return Fails<Exception>(name, std::move(text), [members] { Decoded(OneRecord(members)); });
}

class CodecFailure : public testing::TestWithParam<Failure> {};

TEST_P(CodecFailure, HasItsTypeAndWords) {
  try {
    GetParam().act();
    FAIL() << "nothing thrown";
  } catch (const std::exception& e) {
    EXPECT_TRUE(typeid(e) == GetParam().type) << typeid(e).name();
    EXPECT_EQ(e.what(), GetParam().text);
  }
}

using out = std::out_of_range;
constexpr auto kMax = std::numeric_limits<std::size_t>::max();

INSTANTIATE_TEST_SUITE_P(
    Decoding, CodecFailure,
    testing::Values(Refused<std::runtime_error>("FixedForLength", "2001 00000001", "Invalid source tag wire type"),
                    Refused<std::runtime_error>("LengthForFixed", "7000 00000004 00000013", "Invalid source tag wire type"),
                    Refused<std::runtime_error>("OtherFixedSize", "1000 0013", "Invalid source tag wire type"),
                    Refused<out>("HalfATag", "20", kReadBeyond), Refused<out>("BodyCut", "2000 0000", kReadBeyond),
                    Refused<out>("TextBeyondBuffer", "7001 FFFFFFFF 61", kReadBeyond),
                    Refused<out>("UnknownBeyondBuffer", "7FFF 00000002 01", kReadBeyond),
                    Refused<out>("UuidOf15", "7002 0000000F 01020304050607080910111213141516", kSmaller),
                    Refused<out>("UuidOf15InReference", "7004 00000017 0001 0002 0000000F 070000000000000000000000000000", kSmaller),
                    Refused<out>("ReferenceTooShort", "7004 00000004 0001 0002 00000010 07000000000000000000000000000000", kTooSmall),
                    Refused<out>("ReferenceOneShort", "7004 00000017 0001 0002 00000010 07000000000000000000000000000000", kTooSmall),
                    Refused<out>("ReferenceBeyondBuffer", "7004 00000019 0001 0002 00000010 07000000000000000000000000000000", kInvalidEnd),
                    Refused<out>("VectorWithHalfElement", "7003 00000006 00000001 00000002 2007 3F800000", kTooSmall),
                    Fails<out>("RecordBeyondBuffer", kInvalidEnd, [] { Decoded(Hex("00000005 00000002 00")); }),
                    Fails<out>("RecordBeyondArray", kTooSmall, [] { Decoded(Hex("00000004 00000003 0FFE01")); }),
                    Fails<out>("ArrayBeyondBuffer", kReadBeyond, [] { Decoded(Hex("FFFFFFFF 00000000")); }),
                    Fails<out>("NoLength", kReadBeyond, [] { Decoded(Hex("0000")); }),
                    Fails<std::invalid_argument>("ArrayWithoutLengthField", kInvalidSize, [] { Decoded(Hex("00"), Sizes(0, 4, 4)); }),
                    Fails<std::overflow_error>("EndOverflows", "Deserialization detected std::size_t overflow.",
                                               [] { detail::calc_record_end_offset_or_throw(8, 16, kMax - 1); }),
                    Fails<out>("EndBeyond", kInvalidEnd, [] { detail::calc_record_end_offset_or_throw(8, 16, 9); }),
                    Fails<std::runtime_error>("NoTagList",
                                              "Deserialization of a type in TLV mode, but no tag list generated. This is an error in "
                                              "the generator.",
                                              [] {
                                                const auto bytes = Hex("20010000");
                                                xr::com::Read_buffer buffer{bytes};
                                                qe::com::optional<Colour> colour;
                                                deserialize_with_tag(buffer, colour, Sample::kColour, {}, Tag_list{{}}, 4);
                                              }),
                    Fails<out>("SeekBeyond", "Seek beyond the end of the data buffer",
                               [] {
                                 const Bytes bytes(3);
                                 xr::com::Read_buffer buffer{bytes};
                                 buffer.seek_to(3);
                                 buffer.seek_to(4);
                               }),
                    Fails<std::invalid_argument>("CopyToNowhere", "destination cannot be NULL",
                                                 [] {
                                                   const Bytes bytes(3);
                                                   xr::com::Read_buffer{bytes}.copy_to(nullptr, 1);
                                                 })),
    [](const auto& row) { return std::string{row.param.name}; });

std::vector<Sample> WithText(std::size_t length) {
  Sample sample;
  sample.text = std::string(length, 'x');
  return {sample};
}

INSTANTIATE_TEST_SUITE_P(
    Encoding, CodecFailure,
    testing::Values(
        Fails<std::overflow_error>("RecordOver255", kDoesNotFit, [] { Encoded(WithText(256), Sizes(4, 1, 4)); }),
        Fails<std::overflow_error>("ArrayOver65535", kDoesNotFit, [] { Encoded(WithText(65536), Sizes(2, 4, 4)); }),
        Fails<std::overflow_error>("LengthOver32Bits", kDoesNotFit,
                                   [] {
                                     Bytes bytes;
                                     serialize_length_field_dispatch(4, std::size_t{1} << 32U, bytes, {});
                                   }),
        Fails<std::invalid_argument>("LengthFieldOf3", kInvalidSize, [] { Encoded(WithText(1), Sizes(4, 3, 4)); }),
        Fails<std::invalid_argument>("ArrayWithoutLengthField",
                                     "Vectors must have a length field that deserializer can also deserialize it. Violation of "
                                     "PRS_SOMEIP_00376 & PRS_SOMEIP_00107!",
                                     [] { Encoded({}, Sizes(0, 4, 4)); }),
        Fails<std::runtime_error>("WireType4WithUnequalSizes", std::string{kSizesDiffer} + "4, 2, 1)",
                                  [] { get_length_field_size_for_wire_type(Wire_type::configured_length_field, Sizes(4, 2, 1)); }),
        Fails<std::runtime_error>("WireType4WithoutSizes", std::string{kSizesDiffer} + "0, 0, 0)",
                                  [] { get_length_field_size_for_wire_type(Wire_type::configured_length_field, Sizes(0, 0, 0)); })),
    [](const auto& row) { return std::string{row.param.name}; });

TEST(CodecFailure, LeavesTheBytesAsTheyWere) {
  Bytes bytes{1, 2};
  EXPECT_ANY_THROW(serialize(bytes, WithText(256), Sizes(1, 4, 4)));
  EXPECT_EQ(bytes, (Bytes{1, 2}));
}

TEST(CodecFailure, EveryCutIsOutOfRange) {
  const auto whole = Encoded({FullSample(), FullSample()});
  for (std::size_t length = 0; length < whole.size(); ++length) {
    EXPECT_THROW(Decoded(Bytes(whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(length))), out) << length;
  }
}

TEST(CodecFailure, NoChangedByteDoesHarm) {
  const auto whole = Encoded({FullSample(), FullSample()});
  for (std::size_t place = 0; place < whole.size(); ++place) {
    for (unsigned value = 0; value < 256; ++value) {
      auto bytes = whole;
      bytes[place] = static_cast<unsigned char>(value);
      try {
        const auto field = Decoded(bytes);
        ASSERT_LE(field.capacity(), whole.size() / 4);  // a length that lies gets no memory
      } catch (const std::exception&) {
      }
    }
  }
}

}  // namespace
}  // namespace binding_test
