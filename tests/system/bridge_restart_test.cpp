#include "tests/system/numbered_test.h"

#include <csignal>
#include <map>
#include <string>

namespace system_test {
namespace {

struct WayToEnd {
  const char* name;
  int signal;
  std::map<std::string, int> reasons;  ///< for which the vehicle drops the sixteen old subscriptions, and how many for each
};

void PrintTo(const WayToEnd& row, std::ostream* out) {
  *out << row.name;
}

/// The program ends and is started again, while the vehicle goes on as if nothing had been.
class BridgeRestart : public NumberedTest, public testing::WithParamInterface<WayToEnd> {
 protected:
  /// The events of this kind that the vehicle has told from there on, counted by a member of theirs.
  std::map<std::string, int> Counted(std::size_t from, const char* event, const char* member) {
    std::map<std::string, int> counts;
    const auto& events = vehicle_->Events();
    for (; from < events.size(); ++from)
      if (events[from].value("event", "") == event) ++counts[events[from].value(member, "")];
    return counts;
  }
};

TEST_P(BridgeRestart, TheNewOneIsSubscribedAndCurrentWithinASecond) {
  const auto& row = GetParam();
  StartVehicle(WriteScenario(1));
  StartBridge();
  ASSERT_THAT(Unseen(1, test_support::kPatience), testing::IsEmpty());
  for (unsigned number = 2; number <= 4 && !HasFailure(); ++number) {
    SCOPED_TRACE(number);
    const auto before = vehicle_->EventCount();
    mirror_.reset();
    http_.reset();
    EXPECT_EQ(bridge_.Stop(row.signal), (row.signal == SIGTERM ? test_support::ExitStatus{} : test_support::ExitStatus{0, row.signal}));
    vehicle_->Command({{"set", NumberedScenario(number)["values"]}});

    StartBridge();
    const auto listens = std::chrono::steady_clock::now();
    EXPECT_THAT(Unseen(number, test_support::kPatience), testing::IsEmpty());
    EXPECT_LT(SecondsSince(listens), 1.0) << "late, with " << lastSeen_ << " as the last";
    EXPECT_EQ(Counted(before, "unsubscribed", "reason"), row.reasons);
    const auto subscribed = Counted(before, "subscribed", "field");
    EXPECT_EQ(subscribed.size(), 16U);
    for (const auto& [field, times] : subscribed) EXPECT_EQ(times, 1) << field;
    EXPECT_EQ(AnnouncedServices(), 2U);
    const auto control = WaitForElement("valueControls", "immediateChargingOptionsTargetSoc");
    ASSERT_TRUE(control);
    EXPECT_EQ(Http().Post(control->value("uri", ""), R"({"currentValue": 55})").status, 200U);
  }
}

INSTANTIATE_TEST_SUITE_P(All, BridgeRestart,
                         testing::Values(WayToEnd{"Stopped", SIGTERM, {{"stopped", 16}}},
                                         WayToEnd{"Killed", SIGKILL, {{"rebooted", 13}, {"disconnected", 3}}}),
                         [](const auto& row) { return row.param.name; });

}  // namespace
}  // namespace system_test
