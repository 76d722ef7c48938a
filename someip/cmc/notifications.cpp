#include <string>
#include <type_traits>

#include "someip/cmc/notification_texts.h"
#include "someip/cmc/typed_records.h"
#include "someip/listening.h"

// The vehicle tells: fifteen receive handlers, one algorithm.
namespace trov::chargingManagementCoreListener {
namespace {

void Append(std::string& text, std::string_view label, const Opt<std::string>& value) {
  if (value) text.append(label).append(*value);
}

// Printed as "%d" prints it: a number beyond 31 bits shows negative, on purpose.
template <class T>
void Append(std::string& text, std::string_view label, const Opt<T>& value) {
  if (value) text.append(label).append(std::to_string(static_cast<std::int32_t>(*value)));
}

// This one resource also shows what its record holds: the mediator writes no line for it. Built only for a log that wants it.
std::string TextOf(const cmc::DT_chargingProcessInformation_struct& record) {
  std::string text;
  Append(text, "type = ", record.type);
  Append(text, ", currentChargeState = ", record.currentChargeState);
  Append(text, ", chargeBulkThreshold = ", record.chargeBulkThreshold);
  Append(text, ", chargeMode = ", record.chargeMode);
  Append(text, ", profileChargeReason = ", record.profileChargeReason);
  Append(text, ", chargeType = ", record.chargeType);
  Append(text, ", chargingScenario = ", record.chargingScenario);
  Append(text, ", activeTargetSoc = ", record.activeTargetSoc);
  Append(text, ", chargeTimeDisplay = ", record.chargeTimeDisplay);
  Append(text, ", evseid = ", record.evseid);
  Append(text, ", chargeRateCuteness = ", record.chargeRateCuteness);
  return text;
}

}  // namespace

template <class R>
void ChargingManagementCoreListener::OnReceived() {
  someip::HandleSamples<R>(*proxyWrapper, logger, kNotified<R>, [&](const typename R::Record& record) {
    if constexpr (std::is_same_v<R, ChargingProcessInformation>) {
      if (record.type && logger.IsLogEnabled(ara::log::LogLevel::kInfo)) {
        logger.LogInfo() << "[SomeIp] chargingProcessInformation - " << TextOf(record);
      }
    }
    PassOnTyped(record, kNotified<R>.noType);
  });
}

void ChargingManagementCoreListener::OnReceived_ChargingPlugs() {
  OnReceived<ChargingPlugs>();
}
void ChargingManagementCoreListener::OnReceived_ValueControls() {
  OnReceived<ValueControls>();
}
void ChargingManagementCoreListener::OnReceived_SwitchControls() {
  OnReceived<SwitchControls>();
}
void ChargingManagementCoreListener::OnReceived_Views() {
  OnReceived<Views>();
}
void ChargingManagementCoreListener::OnReceived_NotificationMarkers() {
  OnReceived<NotificationMarkers>();
}
void ChargingManagementCoreListener::OnReceived_OruUpdateApprovals() {
  OnReceived<OruUpdateApprovals>();
}
void ChargingManagementCoreListener::OnReceived_Notifications() {
  OnReceived<Notifications>();
}
void ChargingManagementCoreListener::OnReceived_FactoryResetData() {
  OnReceived<FactoryResetData>();
}
void ChargingManagementCoreListener::OnReceived_chargingProcessInformation() {
  OnReceived<ChargingProcessInformation>();
}
void ChargingManagementCoreListener::OnReceived_valueIndications() {
  OnReceived<ValueIndications>();
}
void ChargingManagementCoreListener::OnReceived_pastErrorInformation() {
  OnReceived<PastErrorInformation>();
}
void ChargingManagementCoreListener::OnReceived_BatteryCareModes() {
  OnReceived<BatteryCareModes>();
}
void ChargingManagementCoreListener::OnReceived_BatteryPreconditionings() {
  OnReceived<BatteryPreconditionings>();
}
void ChargingManagementCoreListener::OnReceived_BatteryPreconditioningEnergies() {
  OnReceived<BatteryPreconditioningEnergies>();
}
void ChargingManagementCoreListener::OnReceived_BidirectionalChargingModes() {
  OnReceived<BidirectionalChargingModes>();
}

}  // namespace trov::chargingManagementCoreListener
