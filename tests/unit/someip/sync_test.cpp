#include <atomic>
#include <condition_variable>
#include <future>
#include <memory>
#include <mutex>
#include <utility>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "someip/sync/someip_sync.h"
#include "tests/support/wait_for.h"

#include "ara/log/testing/capture.h"

namespace trov::testing {
namespace {

using someipSync::InterruptableTimer;
using someipSync::SomeipSync;
using std::chrono::seconds;
using ::testing::ElementsAre;

struct CountingClient : getFutures::Abstract_GetFutures {
  void FetchData() override { ++fetches; }
  std::atomic<int> fetches{0};
};

/// Lets a wait pass when the test says so, whatever its duration.
class HandTimer : public InterruptableTimer {
 public:
  bool WaitFor(const seconds& duration) override {
    std::unique_lock lock{mutex_};
    waits_.push_back(duration);
    changed_.notify_all();
    changed_.wait(lock, [this] { return stopped_ || passed_ == waits_.size(); });
    return !stopped_;
  }
  void StopWaiting() override {
    const std::lock_guard lock{mutex_};
    stopped_ = true;
    changed_.notify_all();
  }
  /// The duration of the n-th wait, once it has begun.
  seconds Begun(std::size_t n) {
    std::unique_lock lock{mutex_};
    EXPECT_TRUE(changed_.wait_for(lock, test_support::kPatience, [&] { return waits_.size() >= n; })) << n;
    return waits_.size() >= n ? waits_[n - 1] : seconds{-1};
  }
  void Pass() {
    const std::lock_guard lock{mutex_};
    passed_ = waits_.size();
    changed_.notify_all();
  }

 private:
  std::mutex mutex_;  // guards the members below
  std::condition_variable changed_;
  std::vector<seconds> waits_;
  std::size_t passed_ = 0;
  bool stopped_ = false;
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

TEST(SomeipSync, FetchesAfterTheFirstWaitAndThenOnceAPeriodUntilItGoes) {
  const auto client = std::make_shared<CountingClient>();
  auto owned = std::make_unique<HandTimer>();
  auto& timer = *owned;
  SomeipSync sync{seconds{5}, seconds{120}, std::move(owned)};
  sync.AddClient(client);
  sync.StartSync();
  for (std::size_t cycle = 0; cycle < 4; ++cycle) {
    EXPECT_EQ(timer.Begun(cycle + 1), cycle == 0 ? seconds{5} : seconds{120});
    EXPECT_EQ(client->fetches, static_cast<int>(cycle));
    timer.Pass();
  }
  timer.Begun(5);
}

TEST(SomeipSync, TheFirstOnesEndIsTheEndOfAllInThisProcess) {
  const auto client = std::make_shared<CountingClient>();
  for (int turn = 0; turn < 2; ++turn) {
    SomeipSync sync{seconds{0}, seconds{3600}};
    sync.AddClient(client);
    sync.StartSync();
  }
  EXPECT_EQ(client->fetches, 1) << "the second finds the flag set";
}

TEST(SomeipSync, NeverStartedItHasNothingToJoin) {
  ara::log::testing::Capture log;
  { const SomeipSync sync{seconds{1}, seconds{1}}; }
  EXPECT_THAT(log.Lines(), ElementsAre("[DataSync][DESTRUCTOR] Sync thread not joined."));
}

}  // namespace
}  // namespace trov::testing
