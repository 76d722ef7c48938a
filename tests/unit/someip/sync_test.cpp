#include <atomic>
#include <future>
#include <memory>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "someip/sync/someip_sync.h"

#include "ara/log/testing/capture.h"

namespace trov::testing {
namespace {

using someipSync::InterruptableTimer;
using someipSync::SomeipSync;
using std::chrono::seconds;
using ::testing::ElementsAre;

class CountingClient : public getFutures::Abstract_GetFutures {
 public:
  void FetchData() override {
    if (++fetches == 1) first.set_value();
  }
  std::promise<void> first;
  std::atomic<int> fetches{0};
};

TEST(InterruptableTimer, OnceStoppedNeverWaitsAgain) {
  InterruptableTimer timer;
  EXPECT_TRUE(timer.WaitFor(seconds{0}));
  auto wait = std::async(std::launch::async, [&] { return timer.WaitFor(seconds{3600}); });
  timer.StopWaiting();
  EXPECT_FALSE(wait.get());
  EXPECT_FALSE(timer.WaitFor(seconds{3600}));
}

TEST(SomeipSync, AStopInTheFirstDelayStillRunsOneCycle) {
  ara::log::testing::Capture log;
  const auto client = std::make_shared<CountingClient>();
  {
    SomeipSync sync{seconds{3600}, seconds{3600}};
    sync.AddClient(client);
    sync.StartSync();
  }
  EXPECT_EQ(client->fetches, 1);
  EXPECT_TRUE(SomeipSync::isThreadEnded());
  EXPECT_THAT(log.Lines(), ElementsAre("SomeipSync initial wait before sync ended successfully: false",
                                       "[DataSync] Secondary thread about to do get requests to someip...",
                                       "SomeipSync waited whole duration: false", "[DataSync][DESTRUCTOR] Sync component ended normally."));
}

TEST(SomeipSync, AStopInAPeriodEndsItAtOnce) {
  const auto client = std::make_shared<CountingClient>();
  SomeipSync sync{seconds{0}, seconds{3600}};
  sync.AddClient(client);
  sync.StartSync();
  EXPECT_EQ(client->first.get_future().wait_for(seconds{10}), std::future_status::ready);
}

TEST(SomeipSync, NeverStartedItHasNothingToJoin) {
  ara::log::testing::Capture log;
  { const SomeipSync sync{seconds{1}, seconds{1}}; }
  EXPECT_THAT(log.Lines(), ElementsAre("[DataSync][DESTRUCTOR] Sync thread not joined."));
}

}  // namespace
}  // namespace trov::testing
