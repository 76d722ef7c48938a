#include "zuva/format/date_time.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "ara/rest/exceptions.h"

namespace zuva::format {
namespace {

TEST(DateTimes, ReadAsRfc3339) {
  EXPECT_EQ((DateTime{2026, 1, 2, 3, 4, 5, 0, "+00:00"}.GetValue()), "2026-01-02T03:04:05+00:00");
  EXPECT_EQ((DateTime{1970, 12, 31, 23, 59, 60, 7, "+00:00"}.GetValue()), "1970-12-31T23:59:60.007+00:00");
}

TEST(DateTimes, RefuseWhatNoCalendarHas) {
  DateTime date{2024, 2, 29, 0, 0, 0, 0, "+00:00"};
  EXPECT_THROW(date.Set(2023, 2, 29, 0, 0, 0, 0, "+00:00"), ara::rest::InvalidArgumentException);
  EXPECT_THROW(date.Set(1900, 2, 29, 0, 0, 0, 0, "+00:00"), ara::rest::InvalidArgumentException);
  EXPECT_THROW(date.Set(2024, 13, 1, 0, 0, 0, 0, "+00:00"), ara::rest::InvalidArgumentException);
  EXPECT_THROW(date.Set(2024, 1, 0, 0, 0, 0, 0, "+00:00"), ara::rest::InvalidArgumentException);
  EXPECT_THROW(date.Set(10000, 1, 1, 0, 0, 0, 0, "+00:00"), ara::rest::InvalidArgumentException);
  EXPECT_THROW(date.Set(2024, 1, 1, 24, 0, 0, 0, "+00:00"), ara::rest::InvalidArgumentException);
  EXPECT_EQ(date.GetValue(), "2024-02-29T00:00:00+00:00");
}

TEST(DateTimes, AnAssignmentTellsTheOwnersCallbackOnce) {
  DateTime date{1970, 1, 1, 0, 0, 0, 0, "+00:00"};
  std::vector<std::string> told;
  date.SetPostValueChangeCallback([&](const std::string& text) { told.push_back(text); });
  const DateTime other{2026, 11, 24, 10, 15, 30, 0, "+00:00"};
  date = other;
  date = other;
  EXPECT_EQ(told, std::vector<std::string>{"2026-11-24T10:15:30+00:00"});
  EXPECT_FALSE(DateTime{date}.GetPostValueChangeCallback());
}

}  // namespace
}  // namespace zuva::format
