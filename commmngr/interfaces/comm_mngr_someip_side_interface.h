#pragma once

#include "commmngr/interfaces/types.h"

namespace trov::commMngr {

/// What the ChargingManagementCore listener may call: the vehicle's values on their way to the REST side.
/// Callable from any thread; two updates of one kind pass one after the other. A listener does not learn whether its update was accepted.
/// The order of the operations is the order of their slots and stays.
class CommMngrSomeipSideInterface {
 public:
  virtual ~CommMngrSomeipSideInterface() = default;

  virtual void TellZuvaToUpdate_chargingProcessInformation(types::ChargingProcessInformationRawTuple&& process) = 0;
  virtual void TellZuvaToUpdate_NotificationMarkers(const Opt<cmc::DT_ChargingManagementCore_notificationMarkers_type>& type,
                                                    const Opt<bool>& isToBeNotified) = 0;
  virtual void TellZuvaToUpdate_Notifications(
      const Opt<cmc::DT_ChargingManagementCore_notifications_type>& type,
      const Opt<cmc::DT_ChargingManagementCore_notifications_additionalInformation>& additionalInformation,
      const Opt<cmc::DT_ChargingManagementCore_notifications_value>& value) = 0;
  virtual void TellZuvaToUpdate_OruUpdateApprovals(const Opt<cmc::DT_ChargingManagementCore_oruUpdateApprovals_type>& type,
                                                   const Opt<bool>& updateApproval) = 0;
  virtual void TellZuvaToUpdate_pastErrorInformation(
      const Opt<cmc::DT_ChargingManagementCore_pastErrorInformation_type>& type,
      const Opt<cmc::DT_ChargingManagementCore_pastErrorInformation_value>& value,
      const Opt<cmc::DT_ChargingManagementCore_pastErrorInformation_additionalInformation>& additionalInformation,
      const Opt<bool>& confirmedByUser) = 0;
  virtual void TellZuvaToUpdate_SwitchControls(
      const Opt<cmc::DT_ChargingManagementCore_switchControls_type>& type,
      const Opt<cmc::DT_ChargingManagementCore_switchControls_restrictionReason>& restrictionReason,
      const Opt<cmc::DT_ChargingManagementCore_switchControls_switchValue>& switchValue,
      const Opt<std::vector<cmc::DT_ChargingManagementCore_switchControls_switchValueConfiguration>>& switchValueConfiguration) = 0;
  virtual void TellZuvaToUpdate_valueIndications(types::ValueIndicationsRawTuple&& indication) = 0;
  virtual void TellZuvaToUpdate_Views(const Opt<cmc::DT_ChargingManagementCore_views_type>& type,
                                      const Opt<cmc::DT_ChargingManagementCore_views_content>& content,
                                      const Opt<cmc::DT_ChargingManagementCore_views_visibility>& visibility) = 0;
  /// `lastReset` in seconds, passed on as the vehicle sent it.
  virtual void TellZuvaToUpdate_ResetToFactoryData(
      const Opt<cmc::DT_ChargingManagementCore_resetToFactoryData_resetToFactoryData>& resetToFactoryData,
      const Opt<std::uint64_t>& lastReset) = 0;
  virtual void TellZuvaToUpdate_ValueControls(types::ValueControlsRawTuple&& control) = 0;
  /// Whether the vehicle's service is available.
  virtual void TellZuvaToUpdate_Registry(bool available) = 0;
  virtual void TellZuvaToUpdate_ChargingPlugs(
      const Opt<cmc::DT_ChargingManagementCore_chargingPlugs_type>& type,
      const Opt<cmc::DT_ChargingManagementCore_chargingPlugs_infrastructureState>& infrastructureState,
      const Opt<cmc::DT_ChargingManagementCore_chargingPlugs_plugConnectionState>& plugConnectionState,
      const Opt<cmc::DT_ChargingManagementCore_chargingPlugs_plugType>& plugType) = 0;
  virtual void TellZuvaToUpdate_BatteryCareModes(const Opt<cmc::DT_ChargingManagementCore_batteryCareModes_type>& type,
                                                 const Opt<std::uint32_t>& chargeBcamThreshold,
                                                 const Opt<cmc::DT_ChargingManagementCore_batteryCareModes_notification>& notification,
                                                 const Opt<cmc::DT_ChargingManagementCore_batteryCareModes_popup>& popup,
                                                 const Opt<float>& bcamScoreThreshold) = 0;
  virtual void TellZuvaToUpdate_BatteryPreconditionings(
      const Opt<cmc::DT_ChargingManagementCore_batteryPreconditionings_type>& type,
      const Opt<cmc::DT_ChargingManagementCore_batteryPreconditionings_preconditioningState>& preconditioningState) = 0;
  virtual void TellZuvaToUpdate_BatteryPreconditioningEnergies(
      const Opt<cmc::DT_ChargingManagementCore_batteryPreconditioningEnergies_type>& type, const Opt<std::uint32_t>& firstStop,
      const Opt<std::uint32_t>& nextStops) = 0;
  virtual void TellZuvaToUpdate_BidirectionalChargingModes(types::BidirectionalChargingModesRawTuple&& mode) = 0;
};

}  // namespace trov::commMngr
