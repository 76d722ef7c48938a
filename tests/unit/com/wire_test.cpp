#include <gtest/gtest.h>

#include <algorithm>
#include <string>

#include "xr/com/wire/header.h"
#include "xr/com/wire/message_stream.h"
#include "xr/com/wire/sd_message.h"

namespace xr::com::wire {
namespace {

using Buffer = std::vector<unsigned char>;
using boost::asio::ip::make_address_v4;

Sd_message rich_message() {
  const Option udp{Option_kind::endpoint, {make_address_v4("127.0.0.2"), 4711, Protocol::udp}};
  const Option tcp{Option_kind::endpoint, {make_address_v4("127.0.0.2"), 4712, Protocol::tcp}};
  const Option group{Option_kind::multicast, {make_address_v4("224.0.1.2"), 5000, Protocol::udp}};
  return {
      .session = 7,
      .reboot = true,
      .unicast = true,
      .entries = {{.type = Entry_type::offer, .service = 0x6310, .instance = 1, .major = 1, .ttl = 3, .minor = 9, .options = {udp, tcp}},
                  {.type = Entry_type::find, .service = 0x6311, .instance = kAnyInstance, .major = 1, .ttl = 5, .minor = kAnyMinor},
                  {.type = Entry_type::subscribe,
                   .service = 0x6310,
                   .instance = 1,
                   .major = 1,
                   .ttl = 5,
                   .eventgroup = 0x22,
                   .counter = 3,
                   .options = {tcp}},
                  {.type = Entry_type::subscribe_ack,
                   .service = 0x6310,
                   .instance = 1,
                   .major = 1,
                   .ttl = 5,
                   .eventgroup = 0x22,
                   .options = {group}}}};
}

TEST(Header, HasThePublishedLayout) {
  const Header header{.service = 0x6310,
                      .method = 0x8022,
                      .client = 1,
                      .session = 2,
                      .interface_version = 1,
                      .type = Message_type::notification,
                      .code = 5};
  const Buffer payload{0xAA, 0xBB};
  const auto bytes = encode_message(header, payload);
  EXPECT_EQ(bytes, (Buffer{0x63, 0x10, 0x80, 0x22, 0, 0, 0, 10, 0, 1, 0, 2, 1, 1, 2, 5, 0xAA, 0xBB}));
  EXPECT_EQ(decode_header(bytes)->header, header);
  EXPECT_EQ(decode_header(bytes)->message_size, 18U);
}

TEST(Header, RefusesLengthsThatCannotBe) {
  auto bytes = encode_message({}, {});
  bytes[7] = 7;
  EXPECT_EQ(decode_header(bytes).error(), Error::wrong_length);
  bytes[7] = 0xF8, bytes[6] = 0xFF;  // header and payload together have just 64 KiB
  EXPECT_EQ(decode_header(bytes)->message_size, kMaximumMessage);
  bytes[7] = 0xF9;
  EXPECT_EQ(decode_header(bytes).error(), Error::too_big);
  bytes.pop_back();
  EXPECT_EQ(decode_header(bytes).error(), Error::cut_off);
}

TEST(Datagram, HoldsSeveralMessagesAndNothingBehindABrokenOne) {
  auto bytes = encode_message({.method = 1}, Buffer{1, 2, 3});
  const auto second = encode_message({.method = 2}, {});
  bytes.insert(bytes.end(), second.begin(), second.end());
  Bytes rest{bytes};
  EXPECT_EQ(take_message(rest)->payload.size(), 3U);
  EXPECT_EQ(take_message(rest)->header.method, 2);
  EXPECT_TRUE(rest.empty());

  rest = Bytes{bytes}.first(bytes.size() - 1);
  EXPECT_TRUE(take_message(rest));
  EXPECT_EQ(take_message(rest).error(), Error::cut_off);
  EXPECT_TRUE(rest.empty());
}

TEST(Stream, GivesTheSameMessagesWhereverItIsCut) {
  Buffer bytes;
  for (std::uint16_t i = 1; i <= 5; ++i) {
    const auto message = encode_message({.method = i}, Buffer(std::size_t{i} * 7, static_cast<unsigned char>(i)));
    bytes.insert(bytes.end(), message.begin(), message.end());
  }
  for (std::size_t piece = 1; piece <= bytes.size(); ++piece) {
    Message_stream stream;
    std::uint16_t expected = 1;
    for (std::size_t at = 0; at < bytes.size(); at += piece) {
      const auto size = std::min(piece, bytes.size() - at);
      std::copy_n(bytes.begin() + static_cast<std::ptrdiff_t>(at), size, stream.space().begin());
      stream.filled(size);
      auto message = stream.next();
      for (; message; message = stream.next()) {
        EXPECT_EQ(message->header.method, expected);
        EXPECT_EQ(message->payload.size(), expected * 7U);
        ++expected;
      }
      EXPECT_EQ(message.error(), Error::cut_off);
    }
    ASSERT_EQ(expected, 6) << "in pieces of " << piece;
  }
}

TEST(Stream, TakesTheBiggestMessageAndRefusesABiggerOneByItsHeader) {
  Message_stream stream;
  const auto feed = [&](Bytes bytes) {
    while (!bytes.empty()) {
      const auto space = stream.space();
      const auto size = std::min(space.size(), bytes.size());
      ASSERT_GT(size, 0U);
      std::copy_n(bytes.begin(), size, space.begin());
      stream.filled(size);
      bytes = bytes.subspan(size);
    }
  };
  feed(encode_message({}, Buffer(kMaximumMessage - kHeaderSize)));
  EXPECT_EQ(stream.next()->payload.size(), kMaximumMessage - kHeaderSize);
  const auto front = encode_header({}, kMaximumMessage - kHeaderSize + 1);
  feed(front);
  EXPECT_EQ(stream.next().error(), Error::too_big);
}

struct Published {
  const char* name;
  const char* bytes;  ///< behind the SOME/IP header, as the format is published
  Sd_message message;
};

class PublishedSdMessage : public testing::TestWithParam<Published> {};

TEST_P(PublishedSdMessage, IsWrittenAndReadByteForByte) {
  Buffer bytes{0xFF, 0xFF, 0x81, 0x00, 0, 0, 0, 0, 0, 0, 0x12, 0x34, 1, 1, 2, 0};
  std::string digits{GetParam().bytes};
  std::erase(digits, ' ');
  for (std::size_t i = 0; i < digits.size(); i += 2)
    bytes.push_back(static_cast<unsigned char>(std::stoi(digits.substr(i, 2), nullptr, 16)));
  bytes[7] = static_cast<unsigned char>(bytes.size() - 8);
  EXPECT_EQ(encode_sd(GetParam().message), bytes);
  const auto decoded = decode_sd(bytes);
  ASSERT_TRUE(decoded) << decoded.error().message();
  EXPECT_EQ(decoded->session, 0x1234);
  EXPECT_EQ(decoded->reboot, GetParam().message.reboot);
  EXPECT_EQ(decoded->unicast, GetParam().message.unicast);
  EXPECT_EQ(decoded->entries, GetParam().message.entries);
}

const Option kUdp{Option_kind::endpoint, {make_address_v4("192.168.7.9"), 0x7712, Protocol::udp}};
const Option kTcp{Option_kind::endpoint, {make_address_v4("192.168.7.9"), 0x7713, Protocol::tcp}};
const Option kGroup{Option_kind::multicast, {make_address_v4("224.0.1.2"), 0x7714, Protocol::udp}};

Sd_entry entry_of(Entry_type type, std::uint32_t ttl, std::vector<Option> options = {}) {
  const bool is_service = type == Entry_type::find || type == Entry_type::offer;
  return {.type = type,
          .service = 0x6310,
          .instance = 0x0102,
          .major = 0x0A,
          .ttl = ttl,
          .minor = is_service ? 0x11223344U : 0U,
          .eventgroup = static_cast<std::uint16_t>(is_service ? 0 : 0x0022),
          .counter = static_cast<std::uint8_t>(is_service ? 0 : 0x0B),
          .options = std::move(options)};
}

INSTANTIATE_TEST_SUITE_P(
    Wire, PublishedSdMessage,
    testing::Values(Published{"Find",
                              "C0 000000 00000010"
                              " 00 00 00 00 6310 0102 0A 000003 11223344"
                              " 00000000",
                              {.session = 0x1234, .reboot = true, .unicast = true, .entries = {entry_of(Entry_type::find, 3)}}},
                    Published{"OfferOverBothProtocols",
                              "40 000000 00000010"
                              " 01 00 00 20 6310 0102 0A FFFFFF 11223344"
                              " 00000018"
                              " 0009 04 00 C0A80709 00 11 7712"
                              " 0009 04 00 C0A80709 00 06 7713",
                              {.session = 0x1234, .unicast = true, .entries = {entry_of(Entry_type::offer, 0xFFFFFF, {kUdp, kTcp})}}},
                    Published{"StopOffer",
                              "00 000000 00000010"
                              " 01 00 00 00 6310 0102 0A 000000 11223344"
                              " 00000000",
                              {.session = 0x1234, .unicast = false, .entries = {entry_of(Entry_type::offer, 0)}}},
                    Published{"SubscriptionsThatShareAnOption",
                              "80 000000 00000030"
                              " 06 00 00 10 6310 0102 0A 000005 000B 0022"
                              " 06 01 00 10 6310 0102 0A 010203 000B 0022"
                              " 06 00 00 10 6310 0102 0A 000000 000B 0022"
                              " 00000018"
                              " 0009 04 00 C0A80709 00 11 7712"
                              " 0009 04 00 C0A80709 00 06 7713",
                              {.session = 0x1234,
                               .reboot = true,
                               .unicast = false,
                               .entries = {entry_of(Entry_type::subscribe, 5, {kUdp}), entry_of(Entry_type::subscribe, 0x010203, {kTcp}),
                                           entry_of(Entry_type::subscribe, 0, {kUdp})}}},
                    Published{"AckWithAGroupAndNack",
                              "C0 000000 00000020"
                              " 07 00 00 10 6310 0102 0A 000005 000B 0022"
                              " 07 00 00 00 6310 0102 0A 000000 000B 0022"
                              " 0000000C"
                              " 0009 14 00 E0000102 00 11 7714",
                              {.session = 0x1234,
                               .reboot = true,
                               .unicast = true,
                               .entries = {entry_of(Entry_type::subscribe_ack, 5, {kGroup}), entry_of(Entry_type::subscribe_ack, 0)}}}),
    [](const auto& row) { return row.param.name; });

TEST(SdMessage, TakesWhatFitsIn1400BytesAndKeepsAnEndWithItsSubscription) {
  const auto end = entry_of(Entry_type::subscribe, 0, {kUdp}), begin = entry_of(Entry_type::subscribe, 5, {kUdp});
  std::vector<Sd_entry> entries(200, begin);
  ASSERT_EQ(fitting_entries(entries), 85U) << "28 bytes, a shared option of 12 and 85 times 16";
  EXPECT_EQ(fitting_entries({begin, end, begin}), 3U);
  entries[84] = end;
  EXPECT_EQ(fitting_entries(entries), 84U);
  for (std::uint16_t i = 0; i < entries.size(); ++i) entries[i].options.front().endpoint.port = i;
  entries.resize(fitting_entries(entries));
  EXPECT_EQ(encode_sd({.session = 1, .entries = entries}).size(), 28U + 49 * (16 + 12));
  EXPECT_EQ(fitting_entries({}), 0U);
}

TEST(SdMessage, CutAnywhereIsRefused) {
  const auto bytes = encode_sd(rich_message());
  for (std::size_t size = 0; size < bytes.size(); ++size) {
    EXPECT_FALSE(decode_sd(Bytes{bytes}.first(size))) << size;
    // The same with a header that agrees: the inner lengths must notice.
    if (size < kHeaderSize) continue;
    auto cut = Buffer{bytes.begin(), bytes.begin() + static_cast<std::ptrdiff_t>(size)};
    write32(cut, 4, static_cast<std::uint32_t>(size - 8));
    EXPECT_FALSE(decode_sd(cut)) << size;
  }
}

TEST(SdMessage, AnEntryWithoutItsOptionsGoesAlone) {
  auto bytes = encode_sd(rich_message());
  bytes[kHeaderSize + 8 + 1] = 2;  // the offer's run now reaches one option too far
  const auto decoded = decode_sd(bytes);
  ASSERT_TRUE(decoded);
  EXPECT_EQ(decoded->dropped_entries, 1U);
  EXPECT_EQ(decoded->entries.size(), 3U);
}

TEST(SdMessage, SkipsWhatItDoesNotKnow) {
  auto message = rich_message();
  message.entries.resize(1);
  auto bytes = encode_sd(message);
  const auto options = kHeaderSize + 8 + 16 + 4;
  const Buffer ipv6{0, 21, 0x06, 0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15, 16, 0, 0x11, 0, 9};
  bytes.insert(bytes.begin() + static_cast<std::ptrdiff_t>(options), ipv6.begin(), ipv6.end());
  bytes[kHeaderSize + 8 + 3] = 3 << 4;  // the offer's run has it too
  write32(bytes, options - 4, 24 + static_cast<std::uint32_t>(ipv6.size()));
  write32(bytes, 4, static_cast<std::uint32_t>(bytes.size() - 8));
  const auto decoded = decode_sd(bytes);
  ASSERT_TRUE(decoded);
  EXPECT_EQ(decoded->entries, message.entries);

  bytes[kHeaderSize + 8] = 0x33;
  EXPECT_TRUE(decode_sd(bytes)->entries.empty());
}

struct Broken {
  const char* name;
  std::size_t at;
  unsigned char value;
  Error error;
};

class BrokenSdMessage : public testing::TestWithParam<Broken> {};

TEST_P(BrokenSdMessage, IsRefused) {
  auto bytes = encode_sd(rich_message());
  bytes[GetParam().at] = GetParam().value;
  EXPECT_EQ(decode_sd(bytes).error(), GetParam().error);
}

INSTANTIATE_TEST_SUITE_P(Wire, BrokenSdMessage,
                         testing::Values(Broken{"service", 0, 0, Error::not_discovery}, Broken{"method", 2, 0, Error::not_discovery},
                                         Broken{"type", 14, 0, Error::not_discovery}, Broken{"protocol", 12, 2, Error::wrong_version},
                                         Broken{"interface", 13, 2, Error::wrong_version}, Broken{"session", 11, 0, Error::wrong_session},
                                         Broken{"entriesLength", 23, 63, Error::wrong_length},
                                         Broken{"entriesBeyondEnd", 22, 1, Error::cut_off},
                                         Broken{"optionLength", 93, 8, Error::broken_option},
                                         Broken{"optionBeyondEnd", 92, 1, Error::cut_off}),
                         [](const auto& row) { return row.param.name; });

}  // namespace
}  // namespace xr::com::wire
