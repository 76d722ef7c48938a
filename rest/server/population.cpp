#include "rest/server/trov_zuva_server.h"

#include <array>
#include <map>
#include <memory>
#include <string>
#include <string_view>

#include "rest/generated/zuva_server.h"
#include "rest/reset_object.h"
#include "rest/server/made.h"

namespace trov::zuvaServer {
namespace {

using namespace zuva::server::charging_management_core;

/// Makes an object that is in its resource from now on.
template <class T>
std::shared_ptr<T> Added(ZuvaServer& server, const std::string& type) {
  auto object = Made<T>(type);
  server.Add(object);
  return object;
}

}  // namespace

// The order of the calls, and of the objects in each, is the order of the lists that clients read.
void TROVZuVaServer::PopulateServer() {
  CreateNotificationMarkerObjects();
  CreateCPIObjects();
  CreateNotificationObjects();
  CreatePastErrInfoObjects();
  CreateBatteryCarModeObjects();
  CreateBidirectionalChargingModesObjects();
  CreateOtherObjects();
  CreateImmediateChargingOptionsObjects();
  CreateImmediateActionObjects();
  CreateBatteryPreconditioningEnergiesObjects();
  CreateBatteryPreconditioningsObjects();
}

void TROVZuVaServer::CreateNotificationMarkerObjects() {
  for (const std::string marker : {"notificationMarker1", "notificationMarker2", "notificationMarker3"}) {
    const auto soc = Added<ValueControlObject>(Server(), marker + "notificationSocValue");
    const auto range = Added<ValueControlObject>(Server(), marker + "notificationRangeValue");
    const auto time = Added<ValueControlObject>(Server(), marker + "notificationTimeValue");
    const auto object = Made<NotificationMarkerObject>(marker);
    object->SetNotificationSocValue(soc);
    object->SetNotificationRangeValue(range);
    object->SetNotificationTimeValue(time);
    Server().Add(object);
  }
}

void TROVZuVaServer::CreateCPIObjects() {
  struct Indication {
    const char* type;
    std::string_view property;
  };
  static constexpr std::array<Indication, 13> kCreated{{
      {"chargingProcessInformationCurrentSoc", "currentSoc"},
      {"chargingProcessInformationRemainingChargeTimeBulk", "remainingChargeTimeBulk"},
      {"chargingProcessInformationRemainingChargeTimeComplete", "remainingChargeTimeComplete"},
      {"chargingProcessInformationChargeEnergy", "chargeEnergy"},
      {"chargingProcessInformationChargeRate", "chargeRate"},
      {"chargingProcessInformationChargePower", "chargePower"},
      {"chargingProcessInformationMaxPowerChargingStation", "maxPowerChargingStation"},
      {"chargingProcessInformationRemainingChargeTimeFull", "remainingChargeTimeFull"},
      {"chargingProcessInformationRemainingChargeTimeNav", "remainingChargeTimeNav"},
      {"chargingProcessInformationMaxPowerDc", "maxPowerDc"},
      {"chargingProcessInformationMaxPowerAc", "maxPowerAc"},
      {"chargingProcessInformationMaxChargePowerCurrent", "maxChargePowerCurrent"},
      {"chargingProcessInformationMaxChargePowerOptimalTemperature", "maxChargePowerOptimalTemperature"},
  }};
  // The object shows them in another order than they are made in, on purpose.
  static constexpr std::array<std::string_view, 13> kEmbedded{
      "currentSoc",
      "remainingChargeTimeBulk",
      "remainingChargeTimeComplete",
      "remainingChargeTimeFull",
      "remainingChargeTimeNav",
      "chargeEnergy",
      "chargeRate",
      "chargePower",
      "maxPowerChargingStation",
      "maxPowerDc",
      "maxPowerAc",
      "maxChargePowerCurrent",
      "maxChargePowerOptimalTemperature",
  };

  std::map<std::string_view, std::shared_ptr<ValueIndicationObject>> indications;
  for (const auto& row : kCreated) indications[row.property] = Added<ValueIndicationObject>(Server(), row.type);
  const auto object = Made<ChargingProcessInformationObject>("chargingProcessInformation");
  for (const auto property : kEmbedded) object->Embed(property, indications.at(property));
  Server().Add(object);
}

void TROVZuVaServer::CreateNotificationObjects() {
  for (const char* const number : {"1", "2", "3", "4", "5", "6"}) {
    Added<NotificationObject>(Server(), std::string{"chargingNotification"} + number);
  }
}

void TROVZuVaServer::CreatePastErrInfoObjects() {
  for (const char* const number : {"1", "2", "3"}) {
    Added<PastErrorInformationObject>(Server(), std::string{"pastErrorInformation"} + number);
  }
}

void TROVZuVaServer::CreateBatteryCarModeObjects() {
  const auto score = Added<ValueIndicationObject>(Server(), "batteryCareModesBcamScore");
  const auto activation = Added<SwitchControlObject>(Server(), "batteryCareModesBcamActivation");
  const auto object = Made<BatteryCareModeObject>("batteryCareMode");
  object->Embed("bcamScore", score);
  object->Embed("bcamActivation", activation);
  Server().Add(object);
}

void TROVZuVaServer::CreateBidirectionalChargingModesObjects() {
  const auto minSoc = Added<ValueControlObject>(Server(), "bidirectionalChargingModesMinSoc");
  const auto maxSoc = Added<ValueControlObject>(Server(), "bidirectionalChargingModesMaxSoc");
  const auto operatingHours = Added<ValueIndicationObject>(Server(), "bidirectionalChargingModesOperatingHours");
  const auto numbersOfCycles = Added<ValueIndicationObject>(Server(), "bidirectionalChargingModesNumbersOfCycles");
  const auto amountOfEnergy = Added<ValueIndicationObject>(Server(), "bidirectionalChargingModesAmountOfEnergy");
  const auto quota = Added<ValueIndicationObject>(Server(), "bidirectionalChargingModesQuota");
  const auto object = Made<BidirectionalChargingModeObject>("bidirectionalChargingMode");
  object->Embed("minSoc", minSoc);
  object->Embed("maxSoc", maxSoc);
  object->Embed("operatingHours", operatingHours);
  object->Embed("numbersOfCycles", numbersOfCycles);
  object->Embed("amountOfEnergy", amountOfEnergy);
  object->Embed("quota", quota);
  Server().Add(object);
}

void TROVZuVaServer::CreateOtherObjects() {
  // Views enter the service only while the vehicle asks for them.
  viewObjectMap_["popup"] = Made<ViewObject>("popup");
  for (const char* const content : {"bcamInformationScreen", "bcamInitialInformationScreen"}) {
    const auto screen = Made<ViewObject>("bcamScreen");
    screen->SetContent(content);
    viewObjectMap_[content] = screen;
  }
  viewObjectMap_["itSystemScreen"] = Made<ViewObject>("itSystemScreen");

  Added<OruUpdateApprovalObject>(Server(), "oruUpdateApproval");

  const auto reset = zuva::server::factory_reset::ResetObject::Make("ResetObject", ara::rest::Uuid::MakeV4(), NoUri());
  reset->SetWord("category", "eCharging");
  reset->SetName("ChargingManagementCore");  // the service that the reset stands for
  Server().Add(reset);
}

void TROVZuVaServer::CreateImmediateChargingOptionsObjects() {
  const auto targetSoc = Added<ValueControlObject>(Server(), "immediateChargingOptionsTargetSoc");
  const auto navTargetSoc = Added<ValueControlObject>(Server(), "immediateChargingOptionsNavTargetSoc");
  const auto maxChargeCurrentAc = Added<SwitchControlObject>(Server(), "immediateChargingOptionsMaxChargeCurrentAc");
  const auto autounlockAc = Added<SwitchControlObject>(Server(), "immediateChargingOptionsAutounlockAc");
  const auto autounlockDc = Added<SwitchControlObject>(Server(), "immediateChargingOptionsAutounlockDc");
  const auto chargeModeSelection = Added<SwitchControlObject>(Server(), "immediateChargingOptionsChargeModeSelection");
  const auto object = Made<ImmediateChargingOptionObject>("immediateChargingOption");
  object->Embed("targetSoc", targetSoc);
  object->Embed("navTargetSoc", navTargetSoc);
  object->Embed("maxChargeCurrentAc", maxChargeCurrentAc);
  object->Embed("autounlockAc", autounlockAc);
  object->Embed("autounlockDc", autounlockDc);
  object->Embed("chargeModeSelection", chargeModeSelection);
  Server().Add(object);
}

void TROVZuVaServer::CreateImmediateActionObjects() {
  const auto time = Added<ValueControlObject>(Server(), "immediateActionImmediateActionTime");
  const auto startStop = Added<SwitchControlObject>(Server(), "immediateActionStartStopCharging");
  const auto object = Made<ImmediateActionObject>("immediateAction");
  object->Embed("immediateActionTime", time);
  object->Embed("startStopCharging", startStop);
  Server().Add(object);
}

void TROVZuVaServer::CreateBatteryPreconditioningEnergiesObjects() {
  Added<BatteryPreconditioningEnergyObject>(Server(), "batteryPreconditioningEnergy1");
}

void TROVZuVaServer::CreateBatteryPreconditioningsObjects() {
  const auto finished = Added<ValueIndicationObject>(Server(), "batteryPreconditioningRemainingTimeFinished");
  const auto toStart = Added<ValueIndicationObject>(Server(), "batteryPreconditioningRemainingTimeToStart");
  const auto temperature = Added<ValueIndicationObject>(Server(), "batteryPreconditioningBatteryTemperature");
  const auto autoMode = Added<SwitchControlObject>(Server(), "batteryPreconditioningAutoModeActivation");
  const auto activation = Added<SwitchControlObject>(Server(), "batteryPreconditioningPreconditioningActivation");
  const auto object = Made<BatteryPreconditioningObject>("batteryPreconditioning");
  object->Embed("autoModeActivation", autoMode);
  object->Embed("preconditioningActivation", activation);
  object->Embed("remainingTimeFinished", finished);
  object->Embed("remainingTimeToStart", toStart);
  object->Embed("batteryTemperature", temperature);
  Server().Add(object);
}

}  // namespace trov::zuvaServer
