#include "tools/vehicle/session/charging_session.h"

#include "tools/vehicle/values/field_codec.h"

#include <gmock/gmock.h>

#include <set>
#include <string>
#include <vector>

namespace vehicle {
namespace {

using nlohmann::json;
using testing::ElementsAre;
using testing::Gt;
using testing::Lt;

class ChargingSessionTest : public testing::Test {
 protected:
  using Seconds = ChargingSession::Seconds;

  /// The next tick. All that it says must be words of the vehicle's fields.
  void Tick(Seconds time) {
    const auto words = session.Advance(time);
    for (const auto& [field, records] : words.items()) {
      EXPECT_NO_THROW(CodecOf(field, Place{}).fromJson(records, Place{} / field));
      for (const auto& record : records) shown[field][std::string{record["type"]}].update(record);
    }
  }
  bool TickUntil(const std::string& field, const std::string& type, const std::string& member, const json& value) {
    for (int i = 0; i < 5000; ++i) {
      if (shown[field][type][member] == value) return true;
      Tick(Seconds{5});
    }
    return false;
  }
  bool TickUntilState(const std::string& state) {
    return TickUntil("chargingProcessInformation", "chargingProcessInformation", "currentChargeState", state);
  }
  double Indicated(const std::string& type) { return shown["valueIndications"][type]["currentValue"]; }
  std::string Switched(const std::string& type) { return shown["switchControls"][type]["switchValue"]; }
  void Set(const std::string& type, const std::string& value) {
    session.OnSet("switchControls", json::array({{{"type", type}, {"switchValue", value}}}));
  }
  void SetControl(const std::string& type, unsigned value) {
    session.OnSet("valueControls", json::array({{{"type", type}, {"currentValue", value}}}));
  }

  ChargingSession session{{.startSoc = 14, .targetSoc = 80, .power = 150, .ambient = 7, .dc = true}};
  json shown = json::object();
};

TEST_F(ChargingSessionTest, ChargesToTheTargetWithLessAndLessPower) {
  ASSERT_TRUE(TickUntilState("chargingHvBattery"));
  for (int i = 0; i < 12; ++i) Tick(Seconds{5});
  const auto minutes = Indicated("chargingProcessInformationRemainingChargeTimeComplete");
  const auto power = Indicated("chargingProcessInformationChargePower");
  double took = 0;
  for (; Indicated("chargingProcessInformationCurrentSoc") < 79.5 && took < 10'000; took += 5) Tick(Seconds{5});
  EXPECT_NEAR(took / 60, minutes, 2) << "the remaining time was the truth";
  EXPECT_THAT(Indicated("chargingProcessInformationChargePower"), Lt(power));
  ASSERT_TRUE(TickUntilState("chargepurposeReachedAndConservation"));
  EXPECT_NEAR(Indicated("chargingProcessInformationChargeEnergy"), 0.66 * Battery::kCapacity, 2);
  EXPECT_EQ(Indicated("chargingProcessInformationChargePower"), 0);
  EXPECT_EQ(Indicated("chargingProcessInformationRemainingChargeTimeComplete"), 0);
  EXPECT_EQ(shown["targetSocChargings"]["targetSocCharging"]["targetSoc"], 85) << "the navigation changed its mind";
  ASSERT_TRUE(TickUntilState("discharging"));
  ASSERT_TRUE(TickUntilState("notReadyForCharging"));
  EXPECT_THAT(Indicated("bidirectionalChargingModesAmountOfEnergy"), Gt(0));
}

TEST_F(ChargingSessionTest, ShowsEveryMiddleStateHoweverFastTheTimeGoes) {
  std::vector<std::string> flap, lock;
  const auto note = [](std::vector<std::string>& seen, const std::string& state) {
    if (seen.empty() || seen.back() != state) seen.push_back(state);
  };
  for (int i = 0; i < 100 && !(flap.size() > 4); ++i) {
    Tick(Seconds{600});
    note(flap, Switched("rearRight1FlapState"));
    note(lock, Switched("rearRight1PlugLockState"));
  }
  EXPECT_THAT(flap, ElementsAre("close", "opening", "open", "closing", "close"));
  EXPECT_THAT(lock, ElementsAre("unlocked", "locking", "locked", "unlocking", "unlocked"));
}

TEST_F(ChargingSessionTest, DoesWhatClientsSet) {
  ASSERT_TRUE(TickUntilState("chargingHvBattery"));
  Set("immediateActionStartStopCharging", "stopCharging");
  ASSERT_TRUE(TickUntilState("readyForCharging"));
  EXPECT_EQ(Switched("immediateActionStartStopCharging"), "noneOrImmediateActionStopped");
  SetControl("immediateActionImmediateActionTime", 2);
  Set("immediateActionStartStopCharging", "startImmediateActionTime");
  ASSERT_TRUE(TickUntilState("chargingHvBattery"));
  EXPECT_EQ(Switched("immediateActionStartStopCharging"), "chargingImmedieateActionTime");
  ASSERT_TRUE(TickUntilState("readyForCharging")) << "the two minutes are over";
  EXPECT_THAT(Indicated("chargingProcessInformationCurrentSoc"), Lt(40));

  SetControl("immediateChargingOptionsTargetSoc", 40);
  Set("immediateActionStartStopCharging", "startImmediateCharging");
  ASSERT_TRUE(TickUntilState("chargepurposeReachedAndConservation"));
  EXPECT_NEAR(Indicated("chargingProcessInformationCurrentSoc"), 40, 1.5);

  Set("rearRight1FlapLockState", "unlocking");
  Tick(Seconds{1});
  EXPECT_EQ(Switched("rearRight1FlapLockState"), "unlocking");
  Tick(Seconds{5});
  EXPECT_EQ(Switched("rearRight1FlapLockState"), "unlocked");
  Set("rearRight1PlugLockState", "unlocking");
  Tick(Seconds{1});
  EXPECT_EQ(Switched("rearRight1PlugLockState"), "unlocking");
  ASSERT_TRUE(TickUntil("chargingPlugs", "rearRight1", "plugConnectionState", "disconnected"));
}

TEST_F(ChargingSessionTest, AsksForViewsWhenAPhaseBeginsOnly) {
  ASSERT_TRUE(TickUntil("views", "popup", "visibility", "newRequest"));
  shown["views"] = json::object();
  ASSERT_TRUE(TickUntilState("chargingHvBattery"));
  EXPECT_TRUE(shown["views"].empty()) << "a client's answer is not overwritten";
  ASSERT_TRUE(TickUntil("views", "popup", "content", "nothing"));
}

}  // namespace
}  // namespace vehicle
