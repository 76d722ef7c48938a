#include <gtest/gtest.h>

#include <algorithm>
#include <random>

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

TEST(SdMessage, ComesBackAsItWasAndSharesOptions) {
  const auto message = rich_message();
  const auto bytes = encode_sd(message);
  const auto decoded = decode_sd(bytes);
  ASSERT_TRUE(decoded) << decoded.error().message();
  EXPECT_EQ(decoded->entries, message.entries);
  EXPECT_EQ(decoded->session, 7);
  EXPECT_TRUE(decoded->reboot);
  EXPECT_EQ(bytes.size(), 16U + 4 + 4 + 4 * 16 + 4 + 3 * 12) << "the TCP endpoint stands once";
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

TEST(SdMessage, MutatedBytesNeverReachBeyondTheMessage) {
  const auto bytes = encode_sd(rich_message());
  std::minstd_rand random{1};
  for (int round = 0; round < 20000; ++round) {
    // Of its own size on the heap, so that a sanitizer sees a read beyond it.
    auto mutated = std::make_unique<unsigned char[]>(bytes.size());
    std::copy(bytes.begin(), bytes.end(), mutated.get());
    for (int i = 0; i < 3; ++i) mutated[random() % bytes.size()] = static_cast<unsigned char>(random());
    const auto decoded = decode_sd({mutated.get(), bytes.size()});
    if (decoded) {
      EXPECT_LE(decoded->entries.size() + decoded->dropped_entries, 4U);
    }
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
