#include "tests/system/system_test.h"

#include <set>
#include <string>
#include <utility>
#include <vector>

namespace system_test {
namespace {

using nlohmann::ordered_json;

/// The objects of a resource before the vehicle says anything, by type and in order; of a composite also what it embeds under which name,
/// but for the markers, which are three.
struct Population {
  const char* resource;
  const char* name;
  std::vector<std::string> types;
  std::vector<std::pair<std::string, std::string>> embedded = {};
};

std::vector<std::pair<std::string, std::string>> Marker(const std::string& marker) {
  return {{"notificationSocValue", marker + "notificationSocValue"},
          {"notificationRangeValue", marker + "notificationRangeValue"},
          {"notificationTimeValue", marker + "notificationTimeValue"}};
}

// clang-format off
const std::vector<Population> kPopulation{
    {"valueControls", "ValueControlObject",
     {"notificationMarker1notificationSocValue", "notificationMarker1notificationRangeValue", "notificationMarker1notificationTimeValue",
      "notificationMarker2notificationSocValue", "notificationMarker2notificationRangeValue", "notificationMarker2notificationTimeValue",
      "notificationMarker3notificationSocValue", "notificationMarker3notificationRangeValue", "notificationMarker3notificationTimeValue",
      "bidirectionalChargingModesMinSoc", "bidirectionalChargingModesMaxSoc", "immediateChargingOptionsTargetSoc",
      "immediateChargingOptionsNavTargetSoc", "immediateActionImmediateActionTime"}},
    {"valueIndications", "ValueIndicationObject",
     {"chargingProcessInformationCurrentSoc", "chargingProcessInformationRemainingChargeTimeBulk",
      "chargingProcessInformationRemainingChargeTimeComplete", "chargingProcessInformationChargeEnergy",
      "chargingProcessInformationChargeRate", "chargingProcessInformationChargePower", "chargingProcessInformationMaxPowerChargingStation",
      "chargingProcessInformationRemainingChargeTimeFull", "chargingProcessInformationRemainingChargeTimeNav",
      "chargingProcessInformationMaxPowerDc", "chargingProcessInformationMaxPowerAc", "chargingProcessInformationMaxChargePowerCurrent",
      "chargingProcessInformationMaxChargePowerOptimalTemperature", "batteryCareModesBcamScore",
      "bidirectionalChargingModesOperatingHours", "bidirectionalChargingModesNumbersOfCycles",
      "bidirectionalChargingModesAmountOfEnergy", "bidirectionalChargingModesQuota", "batteryPreconditioningRemainingTimeFinished",
      "batteryPreconditioningRemainingTimeToStart", "batteryPreconditioningBatteryTemperature"}},
    {"switchControls", "SwitchControlObject",
     {"batteryCareModesBcamActivation", "immediateChargingOptionsMaxChargeCurrentAc", "immediateChargingOptionsAutounlockAc",
      "immediateChargingOptionsAutounlockDc", "immediateChargingOptionsChargeModeSelection", "immediateActionStartStopCharging",
      "batteryPreconditioningAutoModeActivation", "batteryPreconditioningPreconditioningActivation"}},
    {"notifications", "NotificationObject",
     {"chargingNotification1", "chargingNotification2", "chargingNotification3", "chargingNotification4", "chargingNotification5",
      "chargingNotification6"}},
    {"pastErrorInformation", "PastErrorInformationObject", {"pastErrorInformation1", "pastErrorInformation2", "pastErrorInformation3"}},
    {"oruUpdateApprovals", "OruUpdateApprovalObject", {"oruUpdateApproval"}},
    {"batteryPreconditioningEnergies", "BatteryPreconditioningEnergyObject", {"batteryPreconditioningEnergy1"}},
    {"notificationMarkers", "NotificationMarkerObject", {"notificationMarker1", "notificationMarker2", "notificationMarker3"}},
    {"chargingProcessInformation", "ChargingProcessInformationObject", {"chargingProcessInformation"},
     {{"currentSoc", "chargingProcessInformationCurrentSoc"},
      {"remainingChargeTimeBulk", "chargingProcessInformationRemainingChargeTimeBulk"},
      {"remainingChargeTimeComplete", "chargingProcessInformationRemainingChargeTimeComplete"},
      {"remainingChargeTimeFull", "chargingProcessInformationRemainingChargeTimeFull"},
      {"remainingChargeTimeNav", "chargingProcessInformationRemainingChargeTimeNav"},
      {"chargeEnergy", "chargingProcessInformationChargeEnergy"},
      {"chargeRate", "chargingProcessInformationChargeRate"},
      {"chargePower", "chargingProcessInformationChargePower"},
      {"maxPowerChargingStation", "chargingProcessInformationMaxPowerChargingStation"},
      {"maxPowerDc", "chargingProcessInformationMaxPowerDc"},
      {"maxPowerAc", "chargingProcessInformationMaxPowerAc"},
      {"maxChargePowerCurrent", "chargingProcessInformationMaxChargePowerCurrent"},
      {"maxChargePowerOptimalTemperature", "chargingProcessInformationMaxChargePowerOptimalTemperature"}}},
    {"batteryCareModes", "BatteryCareModeObject", {"batteryCareMode"},
     {{"bcamScore", "batteryCareModesBcamScore"}, {"bcamActivation", "batteryCareModesBcamActivation"}}},
    {"bidirectionalChargingModes", "BidirectionalChargingModeObject", {"bidirectionalChargingMode"},
     {{"minSoc", "bidirectionalChargingModesMinSoc"},
      {"maxSoc", "bidirectionalChargingModesMaxSoc"},
      {"operatingHours", "bidirectionalChargingModesOperatingHours"},
      {"numbersOfCycles", "bidirectionalChargingModesNumbersOfCycles"},
      {"amountOfEnergy", "bidirectionalChargingModesAmountOfEnergy"},
      {"quota", "bidirectionalChargingModesQuota"}}},
    {"immediateChargingOptions", "ImmediateChargingOptionObject", {"immediateChargingOption"},
     {{"targetSoc", "immediateChargingOptionsTargetSoc"},
      {"navTargetSoc", "immediateChargingOptionsNavTargetSoc"},
      {"maxChargeCurrentAc", "immediateChargingOptionsMaxChargeCurrentAc"},
      {"autounlockAc", "immediateChargingOptionsAutounlockAc"},
      {"autounlockDc", "immediateChargingOptionsAutounlockDc"},
      {"chargeModeSelection", "immediateChargingOptionsChargeModeSelection"}}},
    {"immediateActions", "ImmediateActionObject", {"immediateAction"},
     {{"immediateActionTime", "immediateActionImmediateActionTime"}, {"startStopCharging", "immediateActionStartStopCharging"}}},
    {"batteryPreconditionings", "BatteryPreconditioningObject", {"batteryPreconditioning"},
     {{"autoModeActivation", "batteryPreconditioningAutoModeActivation"},
      {"preconditioningActivation", "batteryPreconditioningPreconditioningActivation"},
      {"remainingTimeFinished", "batteryPreconditioningRemainingTimeFinished"},
      {"remainingTimeToStart", "batteryPreconditioningRemainingTimeToStart"},
      {"batteryTemperature", "batteryPreconditioningBatteryTemperature"}}},
    {"views", "", {}},
    {"chargingPlugs", "", {}},
    {"chargeModes", "", {}},
    {"statistics", "", {}},
};
// clang-format on

class Populated : public SystemTest {
 protected:
  ordered_json Get(const std::string& target) { return ordered_json::parse(Http().Get(target).body); }
  /// What an element without values has, in order: its identity, its type and the objects that it embeds.
  void ExpectElement(const ordered_json& element, const std::string& path, const char* name, const std::string& type,
                     const std::vector<std::pair<std::string, std::string>>& embedded) {
    const std::string id = element.value("id", "");
    EXPECT_TRUE(ids_.insert(id).second) << type;
    ordered_json expected{{"id", id}, {"name", name}, {"uri", path + "/" + id}, {"type", type}};
    for (const auto& [property, embeddedType] : embedded) expected[property] = ElementOfType(embeddedType);
    EXPECT_EQ(element.dump(), expected.dump());
  }
  ordered_json ElementOfType(const std::string& type) {
    for (const char* resource : {"valueControls", "valueIndications", "switchControls"}) {
      for (const auto& element : Get(std::string{"/ChargingManagementCore/"} + resource + "?type=" + type)) return element;
    }
    return type + " is missing";
  }

  std::set<std::string> ids_;
};

TEST_F(Populated, EachResourceHasItsObjectsWithoutValuesInTheirOrder) {
  bridge_.Start();
  for (const auto& row : kPopulation) {
    const auto path = std::string{"/ChargingManagementCore/"} + row.resource;
    const auto elements = Get(path);
    ASSERT_EQ(elements.size(), row.types.size()) << row.resource;
    for (std::size_t i = 0; i < row.types.size(); ++i) {
      const bool isMarker = row.resource == std::string_view{"notificationMarkers"};
      ExpectElement(elements[i], path, row.name, row.types[i], isMarker ? Marker(row.types[i]) : row.embedded);
    }
  }
  const auto resets = Get("/FactoryReset/resets");
  ASSERT_EQ(resets.size(), 1U);
  EXPECT_EQ(resets[0].size(), 4U);
  EXPECT_EQ(resets[0]["name"], "ChargingManagementCore");
  EXPECT_EQ(resets[0]["category"], "eCharging");
  EXPECT_EQ(Http().Get("/ChargingManagementCore/resetToFactoryData").status, 404U);
}

TEST_F(Populated, ResourcesKeepTheirIdentifiersOverAStartAndElementsDoNot) {
  const test_support::TempRoot otherRoot;
  test_support::Bridge other{otherRoot};
  bridge_.Start();
  other.Start();
  auto otherHttp = other.Http();
  const std::string path = "/ChargingManagementCore/notifications";
  EXPECT_EQ(Http().Get(path + "?identity").body, otherHttp.Get(path + "?identity").body);
  EXPECT_EQ(Http().Get("/ChargingManagementCore").body, otherHttp.Get("/ChargingManagementCore").body);
  EXPECT_NE(Http().Get(path).Json()[0]["id"], otherHttp.Get(path).Json()[0]["id"]);
  EXPECT_EQ(other.Stop(), test_support::ExitStatus{});
}

}  // namespace
}  // namespace system_test
