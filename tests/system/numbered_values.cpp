#include "tests/system/numbered_values.h"

#include <array>
#include <ctime>

namespace system_test {

namespace {

using nlohmann::json;

/// A field whose members clients see under their own names.
NumberedValue Plain(const std::string& field, const std::string& type, const json& members) {
  auto record = members;
  record["type"] = type;
  return {field, record, "/ChargingManagementCore/" + field, type, members};
}

template <std::size_t Size>
const char* Word(unsigned number, const std::array<const char*, Size>& words) {
  return words[number % Size];
}

std::string DateAndTime(std::time_t seconds) {
  std::tm time{};
  ::localtime_r(&seconds, &time);
  char text[40];
  return {text, std::strftime(text, sizeof text, "%FT%T+00:00", &time)};
}

}  // namespace

std::vector<NumberedValue> NumberedValues(unsigned number) {
  constexpr std::array kVisibilities{"newRequest", "requestedViewVisible", "requestedViewObstructed"};
  constexpr std::array kFailures{"failedBySupplyVoltage", "failedByBatteryTemperature", "failedByGeneralError"};
  constexpr std::array kStates{"scheduled", "running", "finished", "possibleToStart"};
  const bool odd = number % 2 == 1;
  const unsigned percent = number % 100;
  const std::time_t reset = 1'700'000'000 + std::time_t{number};
  return {
      Plain("chargingPlugs", "rearRight1",
            {{"plugType", odd ? "Typ1AC" : "Typ2Ac"}, {"plugConnectionState", odd ? "connected" : "disconnected"}}),
      Plain("valueControls", "immediateChargingOptionsTargetSoc", {{"currentValue", 1000 + number % 1000}, {"maxValue", 3000}}),
      Plain("switchControls", "immediateChargingOptionsAutounlockAc",
            {{"switchValue", Word(number, std::array{"off", "permanent", "once"})}}),
      Plain("views", "popup", {{"content", "chargingInformationScreen"}, {"visibility", Word(number, kVisibilities)}}),
      Plain("notificationMarkers", "notificationMarker1", {{"isToBeNotified", odd}}),
      Plain("oruUpdateApprovals", "oruUpdateApproval", {{"updateApproval", odd}}),
      Plain("notifications", "chargingNotification1", {{"value", Word(number, kFailures)}, {"additionalInformation", "other"}}),
      {"resetToFactoryData",
       {{"elementId", 1}, {"resetToFactoryData", odd ? "origin" : "notOrigin"}, {"lastReset", reset}},
       "/FactoryReset/resets",
       "",
       {{"isFactoryDefault", odd}, {"lastReset", DateAndTime(reset)}}},
      Plain("chargingProcessInformation", "chargingProcessInformation", {{"evseid", "DE*" + std::to_string(number)}, {"chargeType", "dc"}}),
      Plain("valueIndications", "chargingProcessInformationCurrentSoc", {{"currentValue", number + 0.5}, {"unitPercent", "percent"}}),
      Plain("pastErrorInformation", "pastErrorInformation1", {{"value", Word(number, kFailures)}, {"confirmedByUser", odd}}),
      Plain("batteryCareModes", "batteryCareMode", {{"chargeBcamThreshold", percent}, {"bcamScoreThreshold", percent + 0.25}}),
      Plain("batteryPreconditionings", "batteryPreconditioning", {{"preconditioningState", Word(number, kStates)}}),
      Plain("batteryPreconditioningEnergies", "batteryPreconditioningEnergy1", {{"firstStop", 1 + number}, {"nextStops", 2 + number}}),
      Plain("bidirectionalChargingModes", "bidirectionalChargingMode",
            {{"chargingMode", "discharging"}, {"quotaThreshold", number + 0.75}}),
      {"targetSocChargings",
       {{"type", "targetSocCharging"}, {"targetSoc", percent}},
       "/ChargingManagementCore/valueControls",
       "immediateChargingOptionsNavTargetSoc",
       {{"currentValue", percent}}},
  };
}

nlohmann::json NumberedScenario(unsigned number) {
  json values;
  for (const auto& value : NumberedValues(number)) values[value.field] = json::array({value.record});
  return {{"values", values}};
}

}  // namespace system_test
