#include "tests/system/system_test.h"

#include <map>
#include <vector>

namespace system_test {
namespace {

/// What the vehicle says of a field, and what clients then see of an object.
struct Row {
  const char* name;
  const char* field;
  const char* records;
  const char* resource;
  const char* type;
  const char* members;
};

void PrintTo(const Row& row, std::ostream* out) {
  *out << row.name;
}

const std::vector<Row> kRows{
    {"View", "views", R"([{"type": "popup", "content": "chargingInformationScreen", "visibility": "newRequest"}])", "views", "popup",
     R"({"name": "ViewObject", "content": "chargingInformationScreen", "visibility": "newRequest"})"},
    {"Notification", "notifications",
     R"([{"type": "chargingNotification2", "value": "failedByPe", "additionalInformation": "other", "flapSide": 1}])", "notifications",
     "chargingNotification2", R"({"value": "failedByPe", "additionalInformation": "other"})"},
    {"NotificationMarker", "notificationMarkers", R"([{"type": "notificationMarker3", "isToBeNotified": true}])", "notificationMarkers",
     "notificationMarker3", R"({"isToBeNotified": true})"},
    {"OruUpdateApproval", "oruUpdateApprovals", R"([{"type": "oruUpdateApproval", "updateApproval": true}])", "oruUpdateApprovals",
     "oruUpdateApproval", R"({"updateApproval": true})"},
    {"PastError", "pastErrorInformation",
     R"([{"type": "pastErrorInformation2", "value": "failedByIsolation", "additionalInformation": "abortedStart", "confirmedByUser": true}])",
     "pastErrorInformation", "pastErrorInformation2",
     R"({"value": "failedByIsolation", "additionalInformation": "abortedStart", "confirmedByUser": true})"},
    {"BatteryCareMode", "batteryCareModes",
     R"([{"type": "batteryCareMode", "notification": "bcamScoreValueWarning", "popup": "bcamInformationScreen",
          "chargeBcamThreshold": 80, "bcamScoreThreshold": 62.5}])",
     "batteryCareModes", "batteryCareMode",
     R"({"notification": "bcamScoreValueWarning", "popup": "bcamInformationScreen", "chargeBcamThreshold": 80, "bcamScoreThreshold": 62.5})"},
    {"BatteryPreconditioning", "batteryPreconditionings", R"([{"type": "batteryPreconditioning", "preconditioningState": "running"}])",
     "batteryPreconditionings", "batteryPreconditioning", R"({"preconditioningState": "running"})"},
    {"BatteryPreconditioningEnergy", "batteryPreconditioningEnergies",
     R"([{"type": "batteryPreconditioningEnergy1", "firstStop": 1200, "nextStops": 800}])", "batteryPreconditioningEnergies",
     "batteryPreconditioningEnergy1", R"({"firstStop": 1200, "nextStops": 800})"},
    {"BidirectionalChargingMode", "bidirectionalChargingModes",
     R"([{"type": "bidirectionalChargingMode", "information": "dischargingActive", "chargingMode": "discharging",
          "notification": "maximumQuotaWarning", "quotaThreshold": 12.5}])",
     "bidirectionalChargingModes", "bidirectionalChargingMode",
     R"({"information": "dischargingActive", "chargingMode": "discharging", "notification": "maximumQuotaWarning", "quotaThreshold": 12.5})"},
    {"ChargingPlug", "chargingPlugs",
     R"([{"type": "rearRight1", "plugType": "Typ2Ac", "plugConnectionState": "connected", "infrastructureState": "ready"}])",
     "chargingPlugs", "rearRight1", R"({"plugType": "Typ2Ac", "plugConnectionState": "connected", "infrastructureState": "ready"})"},
    // A number without a word repeats the word before it.
    {"SwitchControl", "switchControls",
     R"([{"type": "immediateChargingOptionsAutounlockAc", "switchValue": "once", "restrictionReason": "pluggedIn",
          "switchValueConfiguration": ["off", 4711, "once"]}])",
     "switchControls", "immediateChargingOptionsAutounlockAc",
     R"({"switchValue": "once", "restrictionReason": "pluggedIn", "switchValueConfiguration": ["off", "off", "once"]})"},
    // Special states are one word, however many there are.
    {"ValueControl", "valueControls",
     R"([{"type": "notificationMarker1notificationRangeValue", "currentValue": 250, "minValue": 50, "maxValue": 600, "resolution": 10,
          "unitDistance": "km", "specialState": "off", "specialStateConfiguration": ["off", 4711]}])",
     "valueControls", "notificationMarker1notificationRangeValue",
     R"({"currentValue": 250, "minValue": 50, "maxValue": 600, "resolution": 10, "unitDistance": "km", "specialState": "off",
         "specialStateConfiguration": ["off"]})"},
    {"ValueIndication", "valueIndications",
     R"([{"type": "chargingProcessInformationChargePower", "currentValue": 148.5, "minValue": -11, "maxValue": 270, "unitPower": "kW",
          "restrictionReason": "calculating", "currentTimeDateValue": "2026-11-24T10:00:00"}])",
     "valueIndications", "chargingProcessInformationChargePower",
     R"({"currentValue": 148.5, "minValue": -11.0, "maxValue": 270.0, "unitPower": "kW", "restrictionReason": "calculating",
         "currentTimeDateValue": "2026-11-24T10:00:00"})"},
    // A number without a word leaves its member out, and the rest goes through.
    {"ChargingProcessInformation", "chargingProcessInformation",
     R"([{"type": "chargingProcessInformation", "currentChargeState": "chargingHvBattery", "chargeType": "dc", "chargeBulkThreshold": 80,
          "evseid": "DE*123*E45678*9", "chargeRateCuteness": 4711, "chargingScenario": "immediatleyChargingActive"}])",
     "chargingProcessInformation", "chargingProcessInformation",
     R"({"currentChargeState": "chargingHvBattery", "chargeType": "dc", "chargeBulkThreshold": 80, "evseid": "DE*123*E45678*9",
         "chargeRateCuteness": null, "chargingScenario": "immediatleyChargingActive"})"},
    {"NavigationTarget", "targetSocChargings", R"([{"type": "targetSocCharging", "targetSoc": 85}])", "valueControls",
     "immediateChargingOptionsNavTargetSoc", R"({"currentValue": 85})"},
};

class Resources : public SystemTest, public testing::WithParamInterface<Row> {};

TEST_P(Resources, ShowWhatTheVehicleNotifies) {
  StartBoth();
  const auto& row = GetParam();
  Set(row.field, json::parse(row.records));
  EXPECT_TRUE(WaitForElement(row.resource, row.type, json::parse(row.members))) << Elements(row.resource).dump(1);
}

INSTANTIATE_TEST_SUITE_P(All, Resources, testing::ValuesIn(kRows), [](const auto& row) { return row.param.name; });

class Roads : public SystemTest {};

TEST_F(Roads, WhatCannotBeSubscribedComesWithTheGets) {
  StartVehicle();
  for (const auto& row : kRows) {
    Set(row.field, json::parse(row.records));
    Fault(row.field, {{"subscribe", "nack"}});
  }
  bridge_.Start();
  for (const auto& row : kRows) {
    EXPECT_TRUE(WaitForElement(row.resource, row.type, json::parse(row.members), 15s)) << row.name << Elements(row.resource).dump(1);
  }
  EXPECT_FALSE(vehicle_->WaitForEvent("subscribed", "views", 0, 0ms));
}

TEST_F(Roads, ACompositeShowsWhatItEmbeds) {
  StartBoth();
  Set("valueControls", {{{"type", "notificationMarker1notificationSocValue"}, {"currentValue", 65}, {"unitPercent", "percent"}}});
  const auto control = WaitForElement("valueControls", "notificationMarker1notificationSocValue", {{"currentValue", 65}});
  ASSERT_TRUE(control);
  EXPECT_TRUE(WaitForElement("notificationMarkers", "notificationMarker1", {{"notificationSocValue", *control}}));

  Set("chargingPlugs", {{{"type", "frontLeft1"}, {"plugConnectionState", "connected"}}});
  Set("switchControls", {{{"type", "frontLeft1PlugLockState"}, {"switchValue", "locking"}}});
  const auto lock = WaitForElement("switchControls", "frontLeft1PlugLockState", {{"switchValue", "locking"}});
  ASSERT_TRUE(lock);
  EXPECT_TRUE(WaitForElement("chargingPlugs", "frontLeft1", {{"plugLockState", *lock}})) << Elements("chargingPlugs").dump(1);
}

TEST_F(Roads, TheFactoryResetFollowsTheVehicle) {
  StartBoth();
  Set("resetToFactoryData", {{{"elementId", 1}, {"resetToFactoryData", "origin"}, {"lastReset", 1700000000}}});
  const auto reset = [this] { return Http().Get("/FactoryReset/resets").Json().at(0); };
  EXPECT_TRUE(WaitFor([&] { return reset().value("isFactoryDefault", false); })) << reset();
  EXPECT_TRUE(reset().value("lastReset", "").starts_with("2023-11-1")) << reset();
  EXPECT_TRUE(reset().value("lastReset", "").ends_with("+00:00")) << reset();
}

TEST_F(Roads, ASessionCanBeFollowedToItsEnd) {
  vehicle_.emplace(root_, "default", 120);
  bridge_.Start();
  auto ws = bridge_.Ws();
  ws.Subscribe("/ChargingManagementCore");
  const auto process = "/ChargingManagementCore/chargingProcessInformation";
  for (const char* state : {"chargingHvBattery", "chargepurposeReachedAndConservation", "discharging"}) {
    EXPECT_TRUE(WaitForEvent(ws, "changed", process, {{"currentChargeState", state}}, 40s)) << state;
  }
  EXPECT_FALSE(bridge_.Log().WaitForLine("out of range", 1, 0ms)) << "a good vehicle keeps the limits";
  // The session goes on; what the vehicle holds and what a client sees is the same all the time, but for what is on its way.
  const auto soc = Elements("valueIndications").at(0);
  EXPECT_EQ(soc["type"], "chargingProcessInformationCurrentSoc");
  EXPECT_GT(soc.value("currentValue", 0.0), 70);
}

}  // namespace
}  // namespace system_test
