#include "ara/log/impl/text.h"
#include "ara/log/logging.h"
#include "ara/log/testing/capture.h"

#include <gmock/gmock.h>

#include <cstdint>
#include <limits>
#include <stdexcept>
#include <string>

namespace {

using ara::log::CreateLogger;
using ara::log::LogLevel;
using ara::log::LogStream;
using ara::log::WholeLine;
using ara::log::testing::Capture;
using testing::ElementsAre;

enum class Mode : unsigned char { off = 65 };

/// The text of a line of one item.
template <class Item>
std::string Rendered(const Item& item) {
  const Capture capture;
  ara::log::LogInfo() << item;
  return capture.Lines().at(0);
}

TEST(LogStream, JoinsItemsWithNothingBetween) {
  const Capture capture;
  ara::log::LogInfo() << "a" << 'b' << std::string{"c"} << 1 << -2L << true << Mode::off << std::runtime_error{"why"};
  EXPECT_THAT(capture.Lines(), ElementsAre("abc1-2true65why"));
}

TEST(LogStream, PrintsNumbersInDecimalAndFloatsAsShortAsTheyReadBack) {
  EXPECT_EQ(Rendered(std::uint8_t{7}), "7");
  EXPECT_EQ(Rendered(std::numeric_limits<std::uint64_t>::max()), "18446744073709551615");
  EXPECT_EQ(Rendered(std::numeric_limits<std::int64_t>::min()), "-9223372036854775808");
  EXPECT_EQ(Rendered(0.1F), "0.1");
  EXPECT_EQ(Rendered(12.5F), "12.5");
}

TEST(LogStream, CutsAnItemAtItsLimitOnACharacterAndGoesOnWithTheNext) {
  const std::string head(LogStream::kItemLimit - 1, 'x');
  const Capture capture;
  ara::log::LogInfo() << head + "\u00fc"
                      << "next";
  ara::log::LogInfo() << head + "yz";
  EXPECT_THAT(capture.Lines(), ElementsAre(head + "next", head + "y"));
}

TEST(LogStream, EndsAFullLineAtItsLastWholeItemOrCharacter) {
  const std::string item(LogStream::kItemLimit, 'x');
  const Capture capture;
  ara::log::LogInfo() << item << item << item << item.substr(1) << 42 << "x";
  ara::log::LogInfo() << item << item << item << item.substr(1) << "\u00fc"
                      << "x";
  const std::string line(LogStream::kLineLimit - 1, 'x');
  EXPECT_THAT(capture.Lines(), ElementsAre(line, line));
}

TEST(LogStream, AWholeLineIsLongerAndStandsAlone) {
  const std::string text(2 * WholeLine::kLimit, 'x');
  const Capture capture;
  ara::log::LogInfo() << "before" << WholeLine{text} << "after" << 1;
  ara::log::LogDebug() << WholeLine{text};
  EXPECT_THAT(capture.Lines(), ElementsAre(text.substr(0, WholeLine::kLimit)));
}

TEST(LogStream, CutsBytesThatAreNoCharactersAnywhere) {
  EXPECT_EQ(ara::log::impl::CutOnCharacter(std::string(9, '\x80'), 5).size(), 5U);
}

TEST(Logger, IsOneForEachPairOfIdAndDescription) {
  auto& first = CreateLogger("TROV", "first");
  EXPECT_EQ(&first, &CreateLogger("TROV", "first"));
  EXPECT_NE(&first, &CreateLogger("TROV", "second"));
}

}  // namespace
