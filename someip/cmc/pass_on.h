#pragma once

#include "commmngr/interfaces/comm_mngr_someip_side_interface.h"
#include "model/records_charging_management_core.h"

/// Which members of a record go to the mediator, and in which order: one line a record, nowhere else.
namespace trov::chargingManagementCoreListener {

using Mediator = commMngr::CommMngrSomeipSideInterface;

inline void PassOn(const cmc::DT_resetToFactoryData_struct& r, Mediator& m) {
  m.TellZuvaToUpdate_ResetToFactoryData(r.resetToFactoryData, r.lastReset);
}
inline void PassOn(const cmc::DT_batteryCareModes_struct& r, Mediator& m) {
  m.TellZuvaToUpdate_BatteryCareModes(r.type, r.chargeBcamThreshold, r.notification, r.popup, r.bcamScoreThreshold);
}
inline void PassOn(const cmc::DT_batteryPreconditionings_struct& r, Mediator& m) {
  m.TellZuvaToUpdate_BatteryPreconditionings(r.type, r.preconditioningState);
}
inline void PassOn(const cmc::DT_batteryPreconditioningEnergies_struct& r, Mediator& m) {
  m.TellZuvaToUpdate_BatteryPreconditioningEnergies(r.type, r.firstStop, r.nextStops);
}
inline void PassOn(const cmc::DT_bidirectionalChargingModes_struct& r, Mediator& m) {
  m.TellZuvaToUpdate_BidirectionalChargingModes({r.type, r.information, r.notification, r.chargingMode, r.operatingHoursThreshold,
                                                 r.numbersOfCyclesThreshold, r.amountOfEnergyThreshold, r.quotaThreshold});
}
inline void PassOn(const cmc::DT_valueControls_struct& r, Mediator& m) {
  m.TellZuvaToUpdate_ValueControls({r.type, r.currentValue, r.minValue, r.maxValue, r.unitPercent, r.unitDistance, r.unitTime, r.resolution,
                                    r.restrictionReason, r.specialState, r.specialStateConfiguration});
}
inline void PassOn(const cmc::DT_switchControls_struct& r, Mediator& m) {
  m.TellZuvaToUpdate_SwitchControls(r.type, r.restrictionReason, r.switchValue, r.switchValueConfiguration);
}
inline void PassOn(const cmc::DT_chargingPlugs_struct& r, Mediator& m) {
  m.TellZuvaToUpdate_ChargingPlugs(r.type, r.infrastructureState, r.plugConnectionState, r.plugType);
}
inline void PassOn(const cmc::DT_views_struct& r, Mediator& m) {
  m.TellZuvaToUpdate_Views(r.type, r.content, r.visibility);
}
inline void PassOn(const cmc::DT_notifications_struct& r, Mediator& m) {
  m.TellZuvaToUpdate_Notifications(r.type, r.additionalInformation, r.value);  // flapSide stays with the vehicle
}
inline void PassOn(const cmc::DT_notificationMarkers_struct& r, Mediator& m) {
  m.TellZuvaToUpdate_NotificationMarkers(r.type, r.isToBeNotified);
}
inline void PassOn(const cmc::DT_oruUpdateApprovals_struct& r, Mediator& m) {
  m.TellZuvaToUpdate_OruUpdateApprovals(r.type, r.updateApproval);
}
inline void PassOn(const cmc::DT_pastErrorInformation_struct& r, Mediator& m) {
  m.TellZuvaToUpdate_pastErrorInformation(r.type, r.value, r.additionalInformation, r.confirmedByUser);
}
inline void PassOn(const cmc::DT_valueIndications_struct& r, Mediator& m) {
  // unitTemperature stays with the vehicle.
  m.TellZuvaToUpdate_valueIndications({r.type, r.currentValue, r.maxValue, r.minValue, r.currentTimeDateValue, r.unitPercent, r.unitTime,
                                       r.unitSpeed, r.unitPower, r.unitEnergy, r.restrictionReason});
}
inline void PassOn(const cmc::DT_chargingProcessInformation_struct& r, Mediator& m) {
  m.TellZuvaToUpdate_chargingProcessInformation({r.type, r.currentChargeState, r.chargeBulkThreshold, r.chargeMode, r.profileChargeReason,
                                                 r.chargeType, r.chargingScenario, r.activeTargetSoc, r.chargeTimeDisplay, r.evseid,
                                                 r.chargeRateCuteness});
}

}  // namespace trov::chargingManagementCoreListener
