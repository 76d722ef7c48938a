#include "binding/proxy/sample_queue.h"

#include <gtest/gtest.h>

#include <memory>
#include <numeric>
#include <vector>

namespace xr::com::cpp_binding::proxy {
namespace {

Any_sample Numbered(int number) {
  return std::make_shared<const int>(number);
}

std::vector<int> Numbers(const Sample_cache& cache) {
  std::vector<int> numbers;
  for (const auto& sample : cache) numbers.push_back(*static_cast<const int*>(sample.get()));
  return numbers;
}

/// A queue that has seen the samples 1 to `count`.
void Fill(Sample_queue& queue, int count, std::size_t bytes = 1) {
  for (int number = 1; number <= count; ++number) queue.emplace_sample({Numbered(number), bytes});
}

TEST(SampleQueue, HoldsTheNewestHundred) {
  Sample_queue queue;
  Fill(queue, 130);
  EXPECT_EQ(queue.size(), 100U);
  EXPECT_EQ(queue.oldest(), 30U);
  EXPECT_EQ(queue.newest(), 130U);
  EXPECT_EQ(Numbers({queue[0], queue[99]}), (std::vector{31, 130}));
}

TEST(SampleQueue, HoldsTwoMebibytesAndAlwaysTheNewest) {
  Sample_queue queue;
  Fill(queue, 5, Sample_queue::kMaxBytes / 4);
  EXPECT_EQ(queue.size(), 4U);
  queue.emplace_sample({Numbered(6), Sample_queue::kMaxBytes + 1});
  EXPECT_EQ(queue.size(), 1U);
  EXPECT_EQ(queue.oldest(), 5U);
  queue.emplace_sample({Numbered(7), 1});
  EXPECT_EQ(Numbers({queue[0]}), std::vector{7});
}

struct CopyRow {
  const char* name;
  int arrived;
  std::uint64_t lastUpdate;
  bool replace;
  std::size_t capacity;
  std::vector<int> before, after;
  bool fresh;
};

class CopySamples : public testing::TestWithParam<CopyRow> {};

TEST_P(CopySamples, FillsTheCache) {
  const auto& row = GetParam();
  Sample_queue queue;
  Fill(queue, row.arrived);
  Sample_cache cache;
  for (const auto number : row.before) cache.push_back(Numbered(number));
  auto lastUpdate = row.lastUpdate;
  EXPECT_EQ(copy_samples_to_cache(cache, row.replace, row.capacity, queue, lastUpdate, queue.oldest()), row.fresh);
  EXPECT_EQ(Numbers(cache), row.after);
  EXPECT_EQ(lastUpdate, queue.newest());
}

std::vector<int> FromTo(int first, int last) {
  std::vector<int> numbers(static_cast<std::size_t>(last - first + 1));
  std::iota(numbers.begin(), numbers.end(), first);
  return numbers;
}

// clang-format off
INSTANTIATE_TEST_SUITE_P(Rows, CopySamples, testing::Values(
    CopyRow{"ReplacesByTheNew",        5, 3, true,  9, {1, 2, 3}, {4, 5}, true},
    CopyRow{"ReplacesByTheNewestOnly", 5, 0, true,  2, {-1}, {4, 5}, true},
    CopyRow{"ReplacesByNothing",       5, 5, true,  9, {4, 5}, {}, false},
    CopyRow{"AppendsWithRoom",         5, 3, false, 9, {1, 2, 3}, {1, 2, 3, 4, 5}, true},
    CopyRow{"OldestGiveWay",           5, 3, false, 4, {1, 2, 3}, {2, 3, 4, 5}, true},
    CopyRow{"FullOfNewReplaces",       5, 1, false, 3, {1}, {3, 4, 5}, true},
    CopyRow{"AppendsNothing",          5, 5, false, 9, {1}, {1}, false},
    CopyRow{"MarkOlderThanTheQueue",   103, 1, true, 200, {}, FromTo(4, 103), true},
    CopyRow{"NoRoomAtAll",             2, 0, true,  0, {}, {}, false}),
    [](const auto& row) { return std::string{row.param.name}; });
// clang-format on

}  // namespace
}  // namespace xr::com::cpp_binding::proxy
