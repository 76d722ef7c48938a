#pragma once

#include <memory>
#include <mutex>

#include "commmngr/fair_mutex.h"
#include "commmngr/interfaces/comm_mngr_rbec_side_interface.h"
#include "commmngr/interfaces/comm_mngr_someip_side_interface.h"
#include "commmngr/interfaces/comm_mngr_zuva_side_interface.h"
#include "commmngr/interfaces/route_based_energy_contents_listener_interface.h"
#include "commmngr/interfaces/trov_listener_interface.h"
#include "commmngr/interfaces/trov_zuva_server_interface.h"
#include "model/guarded.h"

#include "ara/log/logging.h"

namespace trov::commMngr {

/// The mediator: the only object that knows both sides. The vehicle's side speaks enumerations and records, the REST side speaks words;
/// every value that crosses is translated here and handed on at once, in the caller's thread. It holds no state between calls.
///
/// Callable from any thread once wired. Updates of one kind never interleave, updates of different kinds run in parallel: each kind has a
/// mutex that is held over the whole operation, the neighbour's call included, and no operation holds two of them. A neighbour that is not
/// connected drops an update toward REST in silence and answers a write with SET_ERROR.
class CommunicationsManager final : public CommMngrSomeipSideInterface, public CommMngrZuvaSideInterface, public CommMngrRBECSideInterface {
 public:
  CommunicationsManager();

  /// Wiring; an empty pointer disconnects. Both may come while other threads are in an operation.
  void SetZuva(std::shared_ptr<zuvaServer::TROVZuVaServerInterface> server);
  void SetSomeIp(std::shared_ptr<chargingManagementCoreListener::TROVListenerInterface> listener);
  void SetRbec(std::shared_ptr<routeBasedEnergyContents::RouteBasedEnergyContentsListenerInterface> listener);

  void TellZuvaToUpdate_chargingProcessInformation(types::ChargingProcessInformationRawTuple&& process) override;
  void TellZuvaToUpdate_NotificationMarkers(const Opt<cmc::DT_ChargingManagementCore_notificationMarkers_type>& type,
                                            const Opt<bool>& isToBeNotified) override;
  void TellZuvaToUpdate_Notifications(const Opt<cmc::DT_ChargingManagementCore_notifications_type>& type,
                                      const Opt<cmc::DT_ChargingManagementCore_notifications_additionalInformation>& additionalInformation,
                                      const Opt<cmc::DT_ChargingManagementCore_notifications_value>& value) override;
  void TellZuvaToUpdate_OruUpdateApprovals(const Opt<cmc::DT_ChargingManagementCore_oruUpdateApprovals_type>& type,
                                           const Opt<bool>& updateApproval) override;
  void TellZuvaToUpdate_pastErrorInformation(
      const Opt<cmc::DT_ChargingManagementCore_pastErrorInformation_type>& type,
      const Opt<cmc::DT_ChargingManagementCore_pastErrorInformation_value>& value,
      const Opt<cmc::DT_ChargingManagementCore_pastErrorInformation_additionalInformation>& additionalInformation,
      const Opt<bool>& confirmedByUser) override;
  void TellZuvaToUpdate_SwitchControls(
      const Opt<cmc::DT_ChargingManagementCore_switchControls_type>& type,
      const Opt<cmc::DT_ChargingManagementCore_switchControls_restrictionReason>& restrictionReason,
      const Opt<cmc::DT_ChargingManagementCore_switchControls_switchValue>& switchValue,
      const Opt<std::vector<cmc::DT_ChargingManagementCore_switchControls_switchValueConfiguration>>& switchValueConfiguration) override;
  void TellZuvaToUpdate_valueIndications(types::ValueIndicationsRawTuple&& indication) override;
  void TellZuvaToUpdate_Views(const Opt<cmc::DT_ChargingManagementCore_views_type>& type,
                              const Opt<cmc::DT_ChargingManagementCore_views_content>& content,
                              const Opt<cmc::DT_ChargingManagementCore_views_visibility>& visibility) override;
  void TellZuvaToUpdate_ResetToFactoryData(
      const Opt<cmc::DT_ChargingManagementCore_resetToFactoryData_resetToFactoryData>& resetToFactoryData,
      const Opt<std::uint64_t>& lastReset) override;
  void TellZuvaToUpdate_ValueControls(types::ValueControlsRawTuple&& control) override;
  void TellZuvaToUpdate_Registry(bool available) override;
  void TellZuvaToUpdate_ChargingPlugs(const Opt<cmc::DT_ChargingManagementCore_chargingPlugs_type>& type,
                                      const Opt<cmc::DT_ChargingManagementCore_chargingPlugs_infrastructureState>& infrastructureState,
                                      const Opt<cmc::DT_ChargingManagementCore_chargingPlugs_plugConnectionState>& plugConnectionState,
                                      const Opt<cmc::DT_ChargingManagementCore_chargingPlugs_plugType>& plugType) override;
  void TellZuvaToUpdate_BatteryCareModes(const Opt<cmc::DT_ChargingManagementCore_batteryCareModes_type>& type,
                                         const Opt<std::uint32_t>& chargeBcamThreshold,
                                         const Opt<cmc::DT_ChargingManagementCore_batteryCareModes_notification>& notification,
                                         const Opt<cmc::DT_ChargingManagementCore_batteryCareModes_popup>& popup,
                                         const Opt<float>& bcamScoreThreshold) override;
  void TellZuvaToUpdate_BatteryPreconditionings(
      const Opt<cmc::DT_ChargingManagementCore_batteryPreconditionings_type>& type,
      const Opt<cmc::DT_ChargingManagementCore_batteryPreconditionings_preconditioningState>& preconditioningState) override;
  void TellZuvaToUpdate_BatteryPreconditioningEnergies(const Opt<cmc::DT_ChargingManagementCore_batteryPreconditioningEnergies_type>& type,
                                                       const Opt<std::uint32_t>& firstStop, const Opt<std::uint32_t>& nextStops) override;
  void TellZuvaToUpdate_BidirectionalChargingModes(types::BidirectionalChargingModesRawTuple&& mode) override;

  enums::SOMEIP_RESPONSE_TYPE TellSomeIpToUpdate_SwitchControls(const std::string& type, const Word& switchValue) override;
  /// @throws qe::com::bad_optional_access for a special state that has no number: callers check the words before.
  enums::SOMEIP_RESPONSE_TYPE TellSomeIpToUpdate_ValueControls(const std::string& type, const Opt<std::uint32_t>& currentValue,
                                                               const Word& specialState) override;
  enums::SOMEIP_RESPONSE_TYPE TellSomeIpToUpdate_Views(const std::string& type, const Word& content, const Word& visibility) override;
  enums::SOMEIP_RESPONSE_TYPE TellSomeIpToUpdate_pastErrorInformation(const std::string& type, const Opt<bool>& confirmedByUser) override;
  enums::SOMEIP_RESPONSE_TYPE TellSomeIpToUpdate_ResetStatus(const Word& resetToFactoryData) override;
  void TellSomeIpToStartListener() override;

  void TellZuvaToUpdate_NavTargetSoc(const std::uint32_t& targetSoc) override;
  enums::SOMEIP_RESPONSE_TYPE TellSomeIpToUpdate_NavTargetSoc(const std::uint32_t& targetSoc) override;

 private:
  ara::log::Logger& logger;
  Guarded<zuvaServer::TROVZuVaServerInterface> zuvaServer;
  Guarded<chargingManagementCoreListener::TROVListenerInterface> someIpListener;
  Guarded<routeBasedEnergyContents::RouteBasedEnergyContentsListenerInterface> rbecListener;

  // Each makes the updates of its kind pass one after the other; they guard no data.
  // Writes of switches, views, past errors and the reset take none of them: that is meant.
  FairMutex mutexSomeIpValueControls;  // also the navigation target's way to the vehicle, which may relay thousands in a row
  std::mutex mutexChargingPlugs;
  std::mutex mutexChargingProcessInformation;
  std::mutex mutexNotificationMarkers;
  std::mutex mutexNotifications;
  std::mutex mutexOruUpdateApprovals;
  std::mutex mutexPastErrorInformation;
  std::mutex mutexSwitchControls;
  std::mutex mutexValueIndications;
  std::mutex mutexViews;
  std::mutex mutexResetToFactoryData;
  std::mutex mutexBatteryCareModes;
  std::mutex mutexBatteryPreconditionings;
  std::mutex mutexBatteryPreconditioningEnergies;
  std::mutex mutexValueControls;
  std::mutex mutexNavTargetSoc;  // also the value control that shows the navigation target
  std::mutex mutexBidirectionalChargingModes;
};

}  // namespace trov::commMngr
