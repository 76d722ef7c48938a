#include "tests/system/numbered_test.h"

#include <iostream>
#include <set>
#include <thread>

namespace system_test {
namespace {

using std::chrono::milliseconds;
using test_support::VehicleProcess;

constexpr std::size_t kFields = 16;

/// Two hosts that offer the same instances. The one that is in use stays in use until it goes; then the other takes its place.
class TwoVehicles : public NumberedTest {
 protected:
  void StartSecond(unsigned number) { second_.emplace(root_, WriteScenario(number, "second"), 1, "127.0.0.3"); }
  void StartWithFirst() {
    StartVehicle(WriteScenario(1));
    StartBridge();
    ASSERT_THAT(Unseen(1, test_support::kPatience), testing::IsEmpty());
    ASSERT_TRUE(vehicle_->WaitUntilSubscribed());
  }

  static std::size_t Count(VehicleProcess& vehicle, std::string_view event, std::size_t from = 0) {
    const auto& events = vehicle.Events();
    return static_cast<std::size_t>(std::count_if(events.begin() + static_cast<std::ptrdiff_t>(from), events.end(),
                                                  [&](const json& e) { return e.value("event", "") == event; }));
  }
  static std::set<std::string> Subscribed(VehicleProcess& vehicle) {
    std::set<std::string> fields;
    for (const auto& event : vehicle.Events())
      if (event.value("event", "") == "subscribed") fields.insert(event.value("field", ""));
    return fields;
  }

  /// For so long, clients see the values of this number and both services announced, all the time.
  void ExpectToSeeOnly(unsigned number, milliseconds time) {
    const auto end = std::chrono::steady_clock::now() + time;
    while (std::chrono::steady_clock::now() < end && !HasFailure()) {
      EXPECT_THAT(Unseen(number, 0ms), testing::IsEmpty());
      EXPECT_EQ(AnnouncedServices(), 2U);
      std::this_thread::sleep_for(100ms);
    }
  }

  std::optional<VehicleProcess> second_;
};

TEST_F(TwoVehicles, TheOneInUseStaysInUseWhateverTheOtherDoes) {
  StartWithFirst();
  const auto before = vehicle_->EventCount();
  StartSecond(2);
  ExpectToSeeOnly(1, 5500ms);  // longer than offers last, and two renewals

  const auto memory = test_support::ResidentMegabytes(bridge_.Program().Pid());
  for (int i = 0; i < 1000; ++i) {
    second_->Command({{"stopOffer", true}});
    second_->Command({{"offer", true}});
  }
  ASSERT_TRUE(WaitFor([&] { return Count(*second_, "offered") == 2002; }));
  second_->Command({{"set", NumberedScenario(3)["values"]}});
  EXPECT_EQ(second_->Stop(), test_support::ExitStatus{});
  ExpectToSeeOnly(1, 500ms);
  if (!kSanitized) {
    EXPECT_LT(test_support::ResidentMegabytes(bridge_.Program().Pid()) - memory, 4.0);
  }

  EXPECT_EQ(Count(*second_, "subscribed") + Count(*second_, "connected") + Count(*second_, "get"), 0U) << "the other was used";
  EXPECT_EQ(Count(*vehicle_, "subscribed", before) + Count(*vehicle_, "unsubscribed", before), 0U) << "the one in use was left for a time";
  EXPECT_EQ(bridge_.Log().Count("OnServiceFound  step 1 reached..."), 2U) << "more than the first of each service was told";
  Set("batteryPreconditioningEnergies", {{{"type", "batteryPreconditioningEnergy1"}, {"firstStop", 4711}}});
  EXPECT_TRUE(WaitForElement("batteryPreconditioningEnergies", "batteryPreconditioningEnergy1", {{"firstStop", 4711}}));
}

struct WayToGo {
  const char* name;
  bool goodbye;
  milliseconds deadline;  ///< for the other's values to be there
};

void PrintTo(const WayToGo& row, std::ostream* out) {
  *out << row.name;
}

class OneOfTwo : public TwoVehicles, public testing::WithParamInterface<WayToGo> {};

TEST_P(OneOfTwo, WhenItGoesTheOtherTakesItsPlace) {
  StartWithFirst();
  StartSecond(2);
  const auto gone = std::chrono::steady_clock::now();
  if (GetParam().goodbye) {
    EXPECT_EQ(vehicle_->Stop(), test_support::ExitStatus{});
  } else {
    vehicle_->Kill();
  }
  EXPECT_THAT(Unseen(2, GetParam().deadline), testing::IsEmpty());
  std::cout << "the other was there after " << SecondsSince(gone) << " s\n";
  EXPECT_TRUE(WaitFor([this] { return AnnouncedServices() == 2; }, 1000ms));

  // The one that went and comes back is the second now.
  WriteScenario(3);
  vehicle_->Start();
  ExpectToSeeOnly(2, 3500ms);
  EXPECT_EQ(Count(*second_, "subscribed"), kFields) << "subscribed more than once";
  EXPECT_EQ(Count(*vehicle_, "subscribed") + Count(*vehicle_, "connected"), 0U) << "the one that came back was used";
  const auto control = WaitForElement("valueControls", "immediateChargingOptionsTargetSoc");
  ASSERT_TRUE(control);
  EXPECT_EQ(Http().Post(control->value("uri", ""), R"({"currentValue": 55})").status, 200U);
  EXPECT_TRUE(second_->WaitForEvent("set", "valueControls"));
}

INSTANTIATE_TEST_SUITE_P(All, OneOfTwo, testing::Values(WayToGo{"Killed", false, 4000ms}, WayToGo{"WithGoodbye", true, 1000ms}),
                         [](const auto& row) { return row.param.name; });

TEST_F(TwoVehicles, OfTwoThatAreThereFromTheStartEachServiceHasOne) {
  StartVehicle(WriteScenario(1));
  StartSecond(1);
  StartBridge();
  EXPECT_THAT(Unseen(1, test_support::kPatience), testing::IsEmpty());
  const auto subscriptions = [&] { return Subscribed(*vehicle_).size() + Subscribed(*second_).size(); };
  ASSERT_TRUE(WaitFor([&] { return subscriptions() == kFields; })) << "not all fields are subscribed";
  ExpectToSeeOnly(1, 3500ms);
  EXPECT_EQ(Count(*vehicle_, "subscribed") + Count(*second_, "subscribed"), kFields) << "subscribed at both, or again and again";
}

}  // namespace
}  // namespace system_test
