#include "tests/system/system_test.h"

namespace system_test {
namespace {

class VehicleLoss : public SystemTest {
 protected:
  /// A value of this round, told over UDP and over TCP, reaches the subscriber.
  void ExpectNotificationsToArrive(test_support::WsClient& ws, int round) {
    Set("batteryPreconditioningEnergies", {{{"type", "batteryPreconditioningEnergy1"}, {"firstStop", 1000 + round}}});
    EXPECT_TRUE(WaitForEvent(ws, "changed", "/ChargingManagementCore/batteryPreconditioningEnergies", {{"firstStop", 1000 + round}}));
    Set("valueIndications", {{{"type", "chargingProcessInformationCurrentSoc"}, {"currentValue", round + 0.5}}});
    EXPECT_TRUE(WaitForEvent(ws, "changed", "/ChargingManagementCore/valueIndications", {{"currentValue", round + 0.5}}));
  }

  /// A set over UDP, where nobody is there to refuse it, and one over TCP.
  void ExpectPostsToFailInTime() {
    for (const auto& [path, body] : posts_) {
      const auto start = std::chrono::steady_clock::now();
      EXPECT_EQ(Http().Post(path, body).status, 500U) << path;
      EXPECT_LT(SecondsSince(start), 1.6) << path;
    }
  }

  /// `count` is how many returns there are with this one.
  void ExpectReturnInTime(std::size_t count) {
    vehicle_->Start();
    const auto start = std::chrono::steady_clock::now();
    const auto delay = vehicle_->WaitUntilSubscribed();
    ASSERT_TRUE(delay) << "not all fields are subscribed again";
    EXPECT_LT(*delay, 1.0) << "seconds from the first offer to the last subscription";
    EXPECT_TRUE(bridge_.Log().WaitForLine("[Zuva] Will Register services", count));
    EXPECT_TRUE(WaitFor([this] { return AnnouncedServices() == 2; }));
    EXPECT_LT(SecondsSince(start), 1.0) << "registered too late";
  }

  std::vector<std::pair<std::string, std::string>> posts_;
};

TEST_F(VehicleLoss, TheBridgeGetsOverDeathAndReturnOfTheVehicle) {
  const auto rounds = static_cast<int>(Setting("VEHICLE_LOSS_ROUNDS", 4));  // more for a long run
  StartBoth();
  Set("views", Popup("newRequest"));
  const auto view = WaitForElement("views", "popup");
  const auto control = WaitForElement("valueControls", "immediateChargingOptionsTargetSoc", {{"currentValue", 80}});
  ASSERT_TRUE(view && control);
  posts_ = {{view->value("uri", ""), R"({"visibility": "requestedViewVisible"})"}, {control->value("uri", ""), R"({"currentValue": 55})"}};
  auto ws = bridge_.Ws();
  ws.Subscribe("/ChargingManagementCore");
  for (int round = 0; round < rounds && !HasFailure(); ++round) {
    SCOPED_TRACE("round " + std::to_string(round));
    ExpectNotificationsToArrive(ws, 2 * round);
    const auto death = std::chrono::steady_clock::now();
    vehicle_->Kill();
    ExpectPostsToFailInTime();
    if (round % 2 == 0) {  // gone for longer than its offers last
      EXPECT_TRUE(WaitFor([this] { return AnnouncedServices() == 0; })) << "still announced";
      EXPECT_LT(SecondsSince(death), 3.5) << "announced for too long";
      ExpectPostsToFailInTime();
    }
    ExpectReturnInTime(static_cast<std::size_t>(round) + 1);
    Set("views", Popup("newRequest"));  // the new vehicle knows nothing of the old one's views
    ExpectNotificationsToArrive(ws, 2 * round + 1);
    for (const auto& [path, body] : posts_) EXPECT_EQ(Http().Post(path, body).status, 200U) << path;
  }
  EXPECT_EQ(bridge_.Log().Count("[SomeIp] Subscribed to Views resource.."), 1U) << "a return does not subscribe anew";
}

TEST_F(VehicleLoss, AGoodbyeIsNoticedAtOnceAndTheOtherServiceStands) {
  StartBoth();
  vehicle_->Command({{"stopOffer", "ChargingManagementCore"}});
  EXPECT_TRUE(WaitFor([this] { return AnnouncedServices() == 0; }, 1000ms));
  const auto before = vehicle_->EventCount();
  vehicle_->Command({{"offer", "ChargingManagementCore"}});
  EXPECT_TRUE(WaitFor([this] { return AnnouncedServices() == 2; }, 1000ms));
  EXPECT_TRUE(vehicle_->WaitForEvent("subscribed", "views", before));
  Set("targetSocChargings", {{{"type", "targetSocCharging"}, {"targetSoc", 61}}});
  EXPECT_TRUE(WaitForElement("valueControls", "immediateChargingOptionsNavTargetSoc", {{"currentValue", 61}}));
  // The set of the vehicle's value comes behind all that the return has brought.
  EXPECT_TRUE(vehicle_->WaitForEvent("set", "valueControls", before));
  EXPECT_FALSE(vehicle_->WaitForEvent("subscribed", "targetSocChargings", before, 0ms)) << "the service that stayed was subscribed anew";
}

TEST_F(VehicleLoss, BrokenConnectionsAreMadeAgainWithTheirSubscriptions) {
  StartBoth();
  const auto first = vehicle_->EventCount();
  for (int round = 0; round < 3; ++round) {
    const auto before = vehicle_->EventCount();
    vehicle_->Command({{"breakTcp", true}});
    for (const char* field : {"switchControls", "valueControls", "valueIndications"})
      ASSERT_TRUE(vehicle_->WaitForEvent("subscribed", field, before)) << field;
  }
  Set("valueIndications", {{{"type", "chargingProcessInformationCurrentSoc"}, {"currentValue", 7.5}}});
  EXPECT_TRUE(WaitForElement("valueIndications", "chargingProcessInformationCurrentSoc", {{"currentValue", 7.5}}));
  EXPECT_FALSE(vehicle_->WaitForEvent("subscribed", "views", first, 0ms)) << "a UDP field was subscribed anew";
  EXPECT_EQ(AnnouncedServices(), 2U);
}

}  // namespace
}  // namespace system_test
