#include "model/optional.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace {

using qe::com::bad_optional_access;
using qe::com::optional;

TEST(Optional, ReadingAnEmptyOneThrowsInEveryWay) {
  optional<std::string> word;
  const auto& constant = word;

  EXPECT_THROW(word.value(), bad_optional_access);
  EXPECT_THROW(*word, bad_optional_access);
  EXPECT_THROW(word->size(), bad_optional_access);
  EXPECT_THROW(constant.value(), bad_optional_access);
  EXPECT_THROW(*constant, bad_optional_access);
  EXPECT_THROW(constant->size(), bad_optional_access);
  EXPECT_THROW(*std::move(word), bad_optional_access);
}

TEST(Optional, ComparesByPresenceAndValue) {
  const optional<int> absent;
  const optional<int> zero{0};

  EXPECT_EQ(absent, optional<int>{});
  EXPECT_NE(absent, zero);
  EXPECT_NE(zero, optional<int>{1});
  EXPECT_EQ(zero, 0);
  EXPECT_NE(absent, 0);
  EXPECT_EQ(absent, std::nullopt);
  EXPECT_EQ(optional<std::string>{"off"}, "off");
}

}  // namespace
