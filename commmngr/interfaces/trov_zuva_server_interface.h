#pragma once

#include "commmngr/interfaces/types.h"

namespace trov::zuvaServer {

/// What the mediator requires of the REST application: the vehicle's values as the REST model's words.
/// The first argument is the key that finds the object; an empty optional removes its field. Nothing is answered.
/// Callable from any thread; the mediator never runs one operation twice at once.
/// The order of the operations is the order of their slots and stays.
class TROVZuVaServerInterface {
 public:
  virtual ~TROVZuVaServerInterface() = default;

  virtual void Update_Registry(bool available) = 0;
  virtual void Update_ValueControls(types::ValueControlsMappedTuple&& control) = 0;
  virtual void Update_SwitchControls(const Word& type, const Word& switchValue, const Word& restrictionReason,
                                     const Words& switchValueConfiguration) = 0;
  virtual void Update_ChargingPlugs(const Word& type, const Word& plugConnectionState, const Word& infrastructureState,
                                    const Word& plugType) = 0;
  virtual void Update_Views(const Word& type, const Word& content, const Word& visibility) = 0;
  virtual void Update_Notifications(const Word& type, const Word& value, const Word& additionalInformation) = 0;
  virtual void Update_NotificationMarkers(const Word& type, const Opt<bool>& isToBeNotified) = 0;
  virtual void Update_OruUpdateApprovals(const Word& type, const Opt<bool>& updateApproval) = 0;
  virtual void Update_chargingProcessInformation(types::ChargingProcessInformationMappedTuple&& process) = 0;
  virtual void Update_valueIndications(types::ValueIndicationsMappedTuple&& indication) = 0;
  virtual void Update_pastErrorInformation(const Word& type, const Word& value, const Word& additionalInformation,
                                           const Opt<bool>& confirmedByUser) = 0;
  /// `lastReset` in seconds.
  virtual void Update_resetToFactoryData(const Word& resetToFactoryData, const Opt<std::uint64_t>& lastReset) = 0;
  virtual void Update_batteryCareModes(const Word& type, const Word& notification, const Word& popup,
                                       const Opt<std::uint32_t>& chargeBcamThreshold, const Opt<float>& bcamScoreThreshold) = 0;
  virtual void Update_batteryPreconditionings(const Word& type, const Word& preconditioningState) = 0;
  virtual void Update_batteryPreconditioningEnergies(const Word& type, const Opt<std::uint32_t>& firstStop,
                                                     const Opt<std::uint32_t>& nextStops) = 0;
  virtual void Update_BidirectionalChargingModes(types::BidirectionalChargingModesMappedTuple&& mode) = 0;
  virtual void Update_NavTargetSoc(const std::uint8_t& targetSoc) = 0;
};

}  // namespace trov::zuvaServer
