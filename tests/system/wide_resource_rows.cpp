#include "tests/system/resource_rows.h"

namespace system_test {

namespace {

std::string Switch(const std::string& member, const std::string& names, const std::string& numberAndWord) {
  return Mediated(" Translated SwitchControl object " + member + " {" + names + "} ={ " + numberAndWord + "}");
}
std::string SwitchType(const std::string& numberAndWord) {
  return Switch("[type]", "type,mapped_type", numberAndWord);
}
std::string SwitchItem(const std::string& numberAndWord) {
  return Switch("[valueConfig] (item from the array)", "valueConfig,mapped_valueConfig", numberAndWord);
}
/// The label and the value or word alone.
std::string Control(const std::string& label, const std::string& value) {
  return Mediated("ValueControl [" + label + "] value = " + value);
}
std::string Indication(const std::string& label, const std::string& value) {
  return Mediated("ValueIndication [" + label + "] value = " + value);
}

const std::string kSwitchFailed = "[ZuVa] Domain error exception caught while updating switchControl object: ";
const std::string kControlFailed = "[ZuVa][SomeIp -> Zuva] Domain error exception caught while updating valueControl object: ";
const std::string kIndicationFailed = "[ZuVa] Domain error exception caught while updating valueIndication object: ";
const std::string kProcessFailed = "[ZuVa] Domain error exception caught while updating ChargingProcessInformation object: ";
const std::string kModeFailed = "[ZuVa][SomeIp -> Zuva] Domain error exception caught while updating BidirectionalChargingModes object: ";
const std::string kOutOfRange = "Value out of range";

}  // namespace

const std::vector<ResourceRow> kWideRows{
    // A number without a word repeats the word before it.
    {"SwitchControl",
     "switchControls",
     R"([{"type": "immediateChargingOptionsAutounlockAc", "switchValue": "once", "restrictionReason": "pluggedIn",
          "switchValueConfiguration": ["off", 4711, "once"]}])",
     {SwitchType("1,immediateChargingOptionsAutounlockAc"), Switch("[value]", "value,mapped_value", "4,once"),
      Switch("[restrictionReason]", "restrictionReason,mapped_restrictionReason", "90,pluggedIn"), SwitchItem("2,off"),
      SwitchItem("4711,off"), SwitchItem("4,once")},
     "immediateChargingOptionsAutounlockAc",
     R"({"switchValue": "once", "restrictionReason": "pluggedIn", "switchValueConfiguration": ["off", "off", "once"]})"},
    // At the head it gives an empty word, which no list of a client's may hold.
    {"SwitchControlWithUnknownNumbers",
     "switchControls",
     R"([{"type": "immediateChargingOptionsAutounlockAc", "switchValue": 4711, "restrictionReason": 2,
          "switchValueConfiguration": [4711, "off"]}])",
     {SwitchType("1,immediateChargingOptionsAutounlockAc"), SwitchItem("4711,"), SwitchItem("2,off"), kSwitchFailed + "Unsupported type: "},
     "immediateChargingOptionsAutounlockAc",
     R"({"switchValueConfiguration": ["off", "off", "once"]})"},
    {"SwitchControlWithEmptyList",
     "switchControls",
     R"([{"type": "immediateChargingOptionsAutounlockAc", "switchValueConfiguration": []}])",
     {SwitchType("1,immediateChargingOptionsAutounlockAc")},
     "immediateChargingOptionsAutounlockAc",
     R"({"switchValueConfiguration": []})"},
    {"SwitchControlWithoutKnownType",
     "switchControls",
     R"([{"switchValue": "off"}, {"type": 4, "switchValue": "off"}])",
     {kNoType, Mediated("SwitchControl type invalid")},
     "immediateChargingOptionsAutounlockAc",
     R"({"switchValueConfiguration": []})"},
    {"SwitchControlAlone",
     "switchControls",
     R"([{"type": "immediateChargingOptionsAutounlockAc"}])",
     {SwitchType("1,immediateChargingOptionsAutounlockAc")},
     "immediateChargingOptionsAutounlockAc",
     "{}"},
    {"SwitchControlIsMade",
     "switchControls",
     R"([{"type": "frontFlapState", "switchValue": "opening"}])",
     {SwitchType("41,frontFlapState"), Switch("[value]", "value,mapped_value", "25,opening"),
      "[ZuVa][Someip -> Zuva] SwitchControl object not found. It shall be created."},
     "frontFlapState",
     R"({"switchValue": "opening"})"},

    // Special states are one word, however many there are.
    {"ValueControl",
     "valueControls",
     R"([{"type": "notificationMarker1notificationRangeValue", "currentValue": 3000, "minValue": 50, "maxValue": 600, "resolution": 10,
          "unitPercent": "percent", "unitDistance": "km", "unitTime": "min", "restrictionReason": "error", "specialState": "off",
          "specialStateConfiguration": [4711, "off"]}])",
     {Mapped("ValueControl [type]", "13,notificationMarker1notificationRangeValue"), Control("currentValue", "3000"),
      Control("minValue", "50"), Control("maxValue", "600"), Control("resolution", "10"), Mapped("ValueControl [unitPercent]", "0,percent"),
      Mapped("ValueControl [unitDistance]", "0,km"), Mapped("ValueControl [unitTime]", "0,min"),
      Mapped("ValueControl [restrictionReason]", "1,error"), Mapped("ValueControl [specialState]", "0,off"),
      Mapped("ValueControl [specialStateConfiguration]", "4711,off")},
     "notificationMarker1notificationRangeValue",
     R"({"currentValue": 3000, "minValue": 50, "maxValue": 600, "resolution": 10, "unitPercent": "percent", "unitDistance": "km",
         "unitTime": "min", "restrictionReason": "error", "specialState": "off", "specialStateConfiguration": ["off"]})"},
    {"ValueControlWithUnknownNumbers",
     "valueControls",
     R"([{"type": "notificationMarker1notificationRangeValue", "currentValue": 250, "unitPercent": 4711, "unitDistance": 4711,
          "unitTime": 4711, "restrictionReason": 2, "specialState": 4711, "specialStateConfiguration": []}])",
     {Mapped("ValueControl [type]", "13,notificationMarker1notificationRangeValue"), Control("currentValue", "250"),
      Mediated("ValueControl [specialStateConfiguration] = {}")},
     "notificationMarker1notificationRangeValue",
     R"({"currentValue": 250, "specialStateConfiguration": []})"},
    {"ValueControlOutOfRange",
     "valueControls",
     R"([{"type": "notificationMarker1notificationRangeValue", "currentValue": 3001, "minValue": 5},
         {"type": "notificationMarker1notificationRangeValue", "currentValue": 7, "resolution": 101, "specialState": "off"}])",
     {Mapped("ValueControl [type]", "13,notificationMarker1notificationRangeValue"), Control("currentValue", "3001"),
      Control("minValue", "5"), kControlFailed + kOutOfRange, Mapped("ValueControl [type]", "13,notificationMarker1notificationRangeValue"),
      Control("currentValue", "7"), Control("resolution", "101"), Mapped("ValueControl [specialState]", "0,off"),
      kControlFailed + kOutOfRange},
     "notificationMarker1notificationRangeValue",
     R"({"currentValue": 7, "specialStateConfiguration": []})"},
    {"ValueControlWithoutKnownType",
     "valueControls",
     R"([{"currentValue": 1}, {"type": 5, "currentValue": 1}])",
     {kNoType, Mediated("ValueControl type invalid")},
     "notificationMarker1notificationRangeValue",
     R"({"currentValue": 7, "specialStateConfiguration": []})"},
    {"ValueControlWithoutObject",
     "valueControls",
     R"([{"type": "immediateChargingOptionsTargetRange", "currentValue": 1}])",
     {Mapped("ValueControl [type]", "1,immediateChargingOptionsTargetRange"), Control("currentValue", "1")},
     "immediateChargingOptionsTargetRange",
     "none"},

    // The unit of temperature stays with the vehicle.
    {"ValueIndication",
     "valueIndications",
     R"([{"type": "chargingProcessInformationChargePower", "currentValue": 148.5, "minValue": -11, "maxValue": 1000000,
          "currentTimeDateValue": "2026-11-24T10:00:00", "unitPercent": "percent", "unitTime": "h", "unitSpeed": "kmPerHour",
          "unitPower": "kW", "unitEnergy": "kWh", "unitTemperature": "celsius", "restrictionReason": "calculating"}])",
     {Indication("type", "chargingProcessInformationChargePower"), Indication("currentValue", "148.5"), Indication("maxValue", "1e+06"),
      Indication("minValue", "-11"), Indication("currentTimeDateValue", "2026-11-24T10:00:00"), Indication("unitPercent", "percent"),
      Indication("unitTime", "h"), Indication("unitSpeed", "kmPerHour"), Indication("unitPower", "kW"), Indication("unitEnergy", "kWh"),
      Indication("restrictionReason", "calculating")},
     "chargingProcessInformationChargePower",
     R"({"currentValue": 148.5, "minValue": -11.0, "maxValue": 1000000.0, "currentTimeDateValue": "2026-11-24T10:00:00",
         "unitPercent": "percent", "unitTime": "h", "unitSpeed": "kmPerHour", "unitPower": "kW", "unitEnergy": "kWh",
         "restrictionReason": "calculating"})"},
    {"ValueIndicationWithUnknownNumbers",
     "valueIndications",
     R"([{"type": "chargingProcessInformationChargePower", "currentValue": 0.1, "unitPercent": 4711, "unitTime": 4711, "unitSpeed": 4711,
          "unitPower": 4711, "unitEnergy": 4711, "restrictionReason": 2}])",
     {Indication("type", "chargingProcessInformationChargePower"), Indication("currentValue", "0.1")},
     "chargingProcessInformationChargePower",
     R"({"currentValue": 0.1})"},
    {"ValueIndicationOutOfRange",
     "valueIndications",
     R"([{"type": "chargingProcessInformationChargePower", "currentValue": 5, "maxValue": -1000000.5, "unitPower": "kW"}])",
     {Indication("type", "chargingProcessInformationChargePower"), Indication("currentValue", "5"), Indication("maxValue", "-1000000.5"),
      Indication("unitPower", "kW"), kIndicationFailed + kOutOfRange},
     "chargingProcessInformationChargePower",
     R"({"currentValue": 5.0})"},
    {"ValueIndicationWithoutKnownType",
     "valueIndications",
     R"([{"currentValue": 1}, {"type": 4711, "currentValue": 1}])",
     {kNoType, Mediated("ValueIndication type invalid")},
     "chargingProcessInformationChargePower",
     R"({"currentValue": 5.0})"},

    // It comes often: the mediator tells nothing of it, the handler of its notifications tells the record.
    {"ChargingProcess",
     "chargingProcessInformation",
     R"([{"type": "chargingProcessInformation", "currentChargeState": "chargingHvBattery", "chargeBulkThreshold": 100,
          "chargeMode": "extendedProfile", "profileChargeReason": "lowCost", "chargeType": "dc",
          "chargingScenario": "immediatleyChargingActive", "activeTargetSoc": "targetSoc", "chargeTimeDisplay": "remainingChargeTimeBulk",
          "evseid": "DE*123*E45678*9", "chargeRateCuteness": "limitedHighSoc"}])",
     {},
     "chargingProcessInformation",
     R"({"currentChargeState": "chargingHvBattery", "chargeBulkThreshold": 100, "chargeMode": "extendedProfile",
         "profileChargeReason": "lowCost", "chargeType": "dc", "chargingScenario": "immediatleyChargingActive",
         "activeTargetSoc": "targetSoc", "chargeTimeDisplay": "remainingChargeTimeBulk", "evseid": "DE*123*E45678*9",
         "chargeRateCuteness": "limitedHighSoc"})",
     "[SomeIp] chargingProcessInformation - type = 0, currentChargeState = 2, chargeBulkThreshold = 100, chargeMode = 3, "
     "profileChargeReason = 2, chargeType = 2, chargingScenario = 5, activeTargetSoc = 2, chargeTimeDisplay = 1, "
     "evseid = DE*123*E45678*9, chargeRateCuteness = 4"},
    {"ChargingProcessWithUnknownNumbers",
     "chargingProcessInformation",
     R"([{"type": "chargingProcessInformation", "currentChargeState": 4711, "chargeMode": 4711, "profileChargeReason": 4711,
          "chargeType": 4711, "chargingScenario": 4711, "activeTargetSoc": 4711, "chargeTimeDisplay": 4711, "evseid": "",
          "chargeRateCuteness": 4711}])",
     {},
     "chargingProcessInformation",
     "{}",
     "[SomeIp] chargingProcessInformation - type = 0, currentChargeState = 4711, chargeMode = 4711, profileChargeReason = 4711, "
     "chargeType = 4711, chargingScenario = 4711, activeTargetSoc = 4711, chargeTimeDisplay = 4711, evseid = , chargeRateCuteness = 4711"},
    {"ChargingProcessOutOfRange",
     "chargingProcessInformation",
     R"([{"type": "chargingProcessInformation", "currentChargeState": "chargingError", "chargeBulkThreshold": 101, "chargeType": "ac"}])",
     {kProcessFailed + kOutOfRange},
     "chargingProcessInformation",
     R"({"currentChargeState": "chargingError"})",
     "[SomeIp] chargingProcessInformation - type = 0, currentChargeState = 7, chargeBulkThreshold = 101, chargeType = 1"},
    {"ChargingProcessWithoutType",
     "chargingProcessInformation",
     R"([{"chargeType": "ac"}])",
     {kNoType},
     "chargingProcessInformation",
     R"({"currentChargeState": "chargingError"})"},
    {"ChargingProcessWithUnknownType",
     "chargingProcessInformation",
     R"([{"type": 4711, "chargeType": "ac"}])",
     {Mediated("ChargingProcessInformation type invalid")},
     "chargingProcessInformation",
     R"({"currentChargeState": "chargingError"})",
     "[SomeIp] chargingProcessInformation - type = 4711, chargeType = 1"},

    {"BidirectionalMode",
     "bidirectionalChargingModes",
     R"([{"type": "bidirectionalChargingMode", "information": "dischargingActive", "chargingMode": "discharging",
          "notification": "maximumQuotaWarning", "operatingHoursThreshold": 10000, "numbersOfCyclesThreshold": 500,
          "amountOfEnergyThreshold": 100000, "quotaThreshold": 12.5}])",
     {Mapped("BidirectionalChargingModes [type]", "0,bidirectionalChargingMode"),
      Mapped("BidirectionalChargingModes [chargingMode]", "1,discharging"),
      Mapped("BidirectionalChargingModes [notification]", "4,maximumQuotaWarning"),
      Mapped("BidirectionalChargingModes [information]", "1,dischargingActive")},
     "bidirectionalChargingMode",
     R"({"information": "dischargingActive", "chargingMode": "discharging", "notification": "maximumQuotaWarning",
         "operatingHoursThreshold": 10000.0, "numbersOfCyclesThreshold": 500.0, "amountOfEnergyThreshold": 100000.0,
         "quotaThreshold": 12.5})"},
    {"BidirectionalModeWithoutKnownType",
     "bidirectionalChargingModes",
     R"([{"quotaThreshold": 1}, {"type": 4711, "quotaThreshold": 1}])",
     {kNoType, Mediated("BidirectionalChargingModes type invalid")},
     "bidirectionalChargingMode",
     R"({"information": "dischargingActive", "chargingMode": "discharging", "notification": "maximumQuotaWarning",
         "operatingHoursThreshold": 10000.0, "numbersOfCyclesThreshold": 500.0, "amountOfEnergyThreshold": 100000.0,
         "quotaThreshold": 12.5})"},
    // What is no number is neither below nor above a limit.
    {"BidirectionalModeOutOfRange",
     "bidirectionalChargingModes",
     R"([{"type": "bidirectionalChargingMode", "information": 4711, "chargingMode": 4711, "notification": 4711,
          "operatingHoursThreshold": "nan", "numbersOfCyclesThreshold": 500.5, "quotaThreshold": 1}])",
     {Mapped("BidirectionalChargingModes [type]", "0,bidirectionalChargingMode"), kModeFailed + kOutOfRange},
     "bidirectionalChargingMode",
     R"({"operatingHoursThreshold": null, "numbersOfCyclesThreshold": 500.0, "amountOfEnergyThreshold": 100000.0, "quotaThreshold": 12.5})"},
    {"BidirectionalModeAlone",
     "bidirectionalChargingModes",
     R"([{"type": "bidirectionalChargingMode", "quotaThreshold": 1000000}])",
     {Mapped("BidirectionalChargingModes [type]", "0,bidirectionalChargingMode")},
     "bidirectionalChargingMode",
     R"({"quotaThreshold": 1000000.0})"},
};

}  // namespace system_test
