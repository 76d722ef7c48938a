#include "tests/system/numbered_test.h"

#include <iostream>
#include <random>
#include <thread>

namespace system_test {
namespace {

using std::chrono::milliseconds;
using std::chrono::steady_clock;

/// How a vehicle ends, and how long nobody is there then.
struct End {
  bool goodbye;
  milliseconds pause;
};

class VehicleRestart : public NumberedTest {
 protected:
  milliseconds UpTo(int most) { return milliseconds{std::uniform_int_distribution{0, most}(random_)}; }
  bool OneIn(int many) { return UpTo(many - 1).count() == 0; }
  End AnyEnd() {
    const bool goodbye = OneIn(2);
    const bool isLonger = OneIn(8);  // than the offers last
    return {goodbye, isLonger ? 3000ms + UpTo(600) : UpTo(1000)};
  }

  void Finish(const End& end) {
    if (end.goodbye) {
      vehicle_->Stop();
    } else {
      vehicle_->Kill();
    }
    std::this_thread::sleep_for(end.pause);
  }

  /// A vehicle that ends before the bridge has subscribed all, or even before it has offered anything.
  void LetOneBeStillborn() {
    const auto life = UpTo(60);
    const auto end = AnyEnd();
    SCOPED_TRACE(testing::Message() << "stillborn after " << life.count() << " ms");
    vehicle_->Launch();
    std::this_thread::sleep_for(life);
    Finish(end);
  }

  void ExpectAllWithinASecond(unsigned number) {
    vehicle_->Start();
    offered_ = steady_clock::now();
    EXPECT_THAT(Unseen(number, 1000ms), testing::IsEmpty()) << "not current a second after the first offer";
    slowest_ = std::max(slowest_, {SecondsSince(offered_), lastSeen_});
    const auto subscribed = vehicle_->WaitUntilSubscribed();
    ASSERT_TRUE(subscribed) << "not all fields are subscribed";
    EXPECT_LT(*subscribed, 1.0) << "seconds from the first offer to the last subscription";
    EXPECT_TRUE(WaitFor([this] { return AnnouncedServices() == 2; }, 1000ms));
  }

  const unsigned seed_ = Setting("VEHICLE_LOSS_SEED", std::random_device{}());  // given to repeat a run
  std::mt19937 random_{seed_};
  steady_clock::time_point offered_;
  std::pair<double, std::string> slowest_;  // seconds, and for which field
};

TEST_F(VehicleRestart, EachNewVehicleIsSubscribedAndCurrentWithinASecond) {
  const auto rounds = Setting("VEHICLE_LOSS_ROUNDS", 6);  // more for a long run
  std::cout << "VEHICLE_LOSS_SEED=" << seed_ << '\n';
  StartVehicle(WriteScenario(1));
  StartBridge();
  ASSERT_THAT(Unseen(1, test_support::kPatience), testing::IsEmpty());
  for (unsigned number = 1; number <= rounds && !HasFailure(); ++number) {
    const auto life = UpTo(1500);
    const auto end = AnyEnd();
    SCOPED_TRACE(testing::Message() << "round " << number << (end.goodbye ? ", goodbye" : ", killed") << " after " << life.count()
                                    << " ms, then nobody for " << end.pause.count() << " ms");
    std::this_thread::sleep_until(offered_ + life);
    EXPECT_THAT(Unseen(number, 0ms), testing::IsEmpty()) << "shown and gone again";
    Finish(end);
    if (OneIn(2)) LetOneBeStillborn();
    WriteScenario(number + 1);  // a stillborn one had the values of its forerunner
    ExpectAllWithinASecond(number + 1);
  }
  std::cout << "the slowest of " << rounds << " was current after " << slowest_.first << " s, with " << slowest_.second << " as its last\n";
  EXPECT_EQ(bridge_.Log().Count("[SomeIp] Subscribed to Views resource.."), 1U) << "a return does not subscribe anew";
}

TEST_F(VehicleRestart, WhatAVehicleSaysRightAfterAPauseIsNotMissed) {
  StartVehicle(WriteScenario(1));
  StartBridge();
  ASSERT_TRUE(vehicle_->WaitUntilSubscribed());
  for (unsigned number = 2; number <= 4; ++number) {
    SCOPED_TRACE(number);
    vehicle_->Program().Signal(SIGSTOP);
    ASSERT_TRUE(WaitFor([this] { return AnnouncedServices() == 0; })) << "its offers still last";
    vehicle_->Command({{"set", NumberedScenario(number)["values"]}});
    vehicle_->Program().Signal(SIGCONT);
    EXPECT_THAT(Unseen(number, 2000ms), testing::IsEmpty());
    EXPECT_TRUE(WaitFor([this] { return AnnouncedServices() == 2; }, 1000ms));
  }
}

TEST_F(VehicleRestart, WhatAVehicleSaysDuringAPauseOfTheProgramIsNotMissed) {
  StartVehicle(WriteScenario(1));
  StartBridge();
  ASSERT_TRUE(vehicle_->WaitUntilSubscribed());
  unsigned number = 1;
  for (const auto pause : {1000ms, 3300ms, 5500ms}) {  // also longer than offers last, and longer than subscriptions
    SCOPED_TRACE(pause.count());
    bridge_.Program().Signal(SIGSTOP);
    std::this_thread::sleep_for(pause);
    vehicle_->Command({{"set", NumberedScenario(++number)["values"]}});
    bridge_.Program().Signal(SIGCONT);
    EXPECT_THAT(Unseen(number, 2000ms), testing::IsEmpty());
    EXPECT_TRUE(WaitFor([this] { return AnnouncedServices() == 2; }, 2000ms));
  }
}

}  // namespace
}  // namespace system_test
