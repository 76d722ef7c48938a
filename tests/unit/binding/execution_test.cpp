#include "fakes.h"
#include "xr/com/execution/deadline_guard.h"
#include "xr/com/execution/static_thread_pool.h"
#include "xr/com/execution/strand.h"

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <thread>

namespace binding_test {
namespace {

TEST(ThreadPool, RunsWhatWasPostedBeforeItsEndAndNothingAfter) {
  xr::com::static_thread_pool pool{3};
  std::atomic<int> count = 0;
  for (int i = 0; i < 500; ++i) pool.post([&] { ++count; });
  pool.stop();
  EXPECT_EQ(count, 500);
  EXPECT_EQ(pool.outstanding_work(), 0U);
  EXPECT_FALSE(pool.post([&] { ++count; }));
  pool.stop();
  EXPECT_EQ(count, 500);
}

TEST(Strand, RunsInOrderOneAtATimeOnManyThreads) {
  const auto pool = std::make_shared<xr::com::static_thread_pool>(4);
  const auto strand = std::make_shared<xr::com::Strand>(pool);
  std::vector<int> order;  // unguarded on purpose: the strand is the guard
  for (int i = 0; i < 1000; ++i) strand->post([&order, i] { order.push_back(i); });
  pool->stop();
  ASSERT_EQ(order.size(), 1000U);
  EXPECT_TRUE(std::is_sorted(order.begin(), order.end()));
}

TEST(Strand, PostsOneJobWhileItHasTasksAndOneMoreAfter) {
  const auto executor = std::make_shared<HandDriven>();
  const auto strand = std::make_shared<xr::com::Strand>(executor);
  int count = 0;
  strand->post([&] { strand->post([&] { ++count; }); });
  strand->post([&] { ++count; });
  EXPECT_EQ(executor->jobs.size(), 1U);
  EXPECT_EQ(executor->RunAll(), 1U);
  EXPECT_EQ(count, 2);
  strand->post([&] { ++count; });
  EXPECT_EQ(executor->RunAll(), 1U);
  EXPECT_EQ(count, 3);
}

TEST(Strand, CloseDropsWhatWaitsAlsoOutOfATask) {
  const auto executor = std::make_shared<HandDriven>();
  const auto strand = std::make_shared<xr::com::Strand>(executor);
  const auto held = std::make_shared<int>(0);
  strand->post([&] { strand->close(); });
  strand->post([held] { ++*held; });
  EXPECT_EQ(executor->RunAll(), 1U);
  strand->post([held] { ++*held; });
  EXPECT_EQ(executor->RunAll(), 0U);
  EXPECT_EQ(*held, 0);
  EXPECT_EQ(held.use_count(), 1);
}

TEST(DeadlineGuard, ReportsTheTimeOfAScopeThatOutlastsItAndNoOther) {
  unsigned long reported = 0;
  {
    const xr::com::Deadline_guard guard{60'000, [&](unsigned long time) { reported = time; }};
  }
  EXPECT_EQ(reported, 0U);
  {
    const xr::com::Deadline_guard guard{1, [&](unsigned long time) {
                                          reported = time;
                                          throw 1;
                                        }};
    const auto end = std::chrono::steady_clock::now() + std::chrono::milliseconds{3};
    while (std::chrono::steady_clock::now() < end) std::this_thread::yield();
  }
  EXPECT_GE(reported, 3U);
}

}  // namespace
}  // namespace binding_test
