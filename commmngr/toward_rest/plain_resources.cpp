#include "commmngr/communications_manager.h"
#include "commmngr/toward_rest/translation.h"

// The named operations are the rows of one family: lock, key, optional members in order, call. The argument orders of the calls are the
// REST side's own and differ from those of the parameters where the lines say so.
namespace trov::commMngr {

void CommunicationsManager::TellZuvaToUpdate_Views(const Opt<cmc::DT_ChargingManagementCore_views_type>& type,
                                                   const Opt<cmc::DT_ChargingManagementCore_views_content>& content,
                                                   const Opt<cmc::DT_ChargingManagementCore_views_visibility>& visibility) {
  const std::lock_guard lock{mutexViews};
  const auto key = Key(logger, type, Mapped("View [type]"), "[CommMngr][Someip -> Zuva] Views type invalid");
  if (!key) return;
  const auto contentWord = Translated(logger, content, Mapped("View [content]"));
  const auto visibilityWord = Translated(logger, visibility, Mapped("View [visibility]"));
  if (const auto rest = zuvaServer.Get()) rest->Update_Views(key, contentWord, visibilityWord);
}

void CommunicationsManager::TellZuvaToUpdate_Notifications(
    const Opt<cmc::DT_ChargingManagementCore_notifications_type>& type,
    const Opt<cmc::DT_ChargingManagementCore_notifications_additionalInformation>& additionalInformation,
    const Opt<cmc::DT_ChargingManagementCore_notifications_value>& value) {
  const std::lock_guard lock{mutexNotifications};
  const auto key = Key(logger, type, Mapped("Notification [type]"), "[CommMngr][Someip -> Zuva] Notification type invalid");
  if (!key) return;
  const auto valueWord = Translated(logger, value, Mapped("Notification [value]"));
  const auto informationWord = Translated(logger, additionalInformation, Mapped("Notification [additionalInformation]"));
  if (const auto rest = zuvaServer.Get()) rest->Update_Notifications(key, valueWord, informationWord);  // other order, on purpose
}

void CommunicationsManager::TellZuvaToUpdate_NotificationMarkers(const Opt<cmc::DT_ChargingManagementCore_notificationMarkers_type>& type,
                                                                 const Opt<bool>& isToBeNotified) {
  const std::lock_guard lock{mutexNotificationMarkers};
  const auto key = Key(logger, type, Mapped("NotificationMarker [type]"), "[CommMngr][Someip -> Zuva] NotificationMarker type invalid");
  if (!key) return;
  if (const auto rest = zuvaServer.Get()) rest->Update_NotificationMarkers(key, isToBeNotified);
}

void CommunicationsManager::TellZuvaToUpdate_OruUpdateApprovals(const Opt<cmc::DT_ChargingManagementCore_oruUpdateApprovals_type>& type,
                                                                const Opt<bool>& updateApproval) {
  const std::lock_guard lock{mutexOruUpdateApprovals};
  const auto key = Key(logger, type, Mapped("OruUpdateApproval [type]"), "[CommMngr][Someip -> Zuva] OruUpdateApproval type invalid");
  if (!key) return;
  if (const auto rest = zuvaServer.Get()) rest->Update_OruUpdateApprovals(key, updateApproval);
}

void CommunicationsManager::TellZuvaToUpdate_pastErrorInformation(
    const Opt<cmc::DT_ChargingManagementCore_pastErrorInformation_type>& type,
    const Opt<cmc::DT_ChargingManagementCore_pastErrorInformation_value>& value,
    const Opt<cmc::DT_ChargingManagementCore_pastErrorInformation_additionalInformation>& additionalInformation,
    const Opt<bool>& confirmedByUser) {
  const std::lock_guard lock{mutexPastErrorInformation};
  const auto key = Key(logger, type, Mapped("PastErrorInformation [type]"), "[CommMngr][Someip -> Zuva] PastErrorInformation type invalid");
  if (!key) return;
  const auto valueWord = Translated(logger, value, Mapped("PastErrorInformation [value]"));
  const auto informationWord = Translated(logger, additionalInformation, Mapped("PastErrorInformation [additionalInformation]"));
  if (confirmedByUser) {
    logger.LogInfo() << "[CommMngr][Someip -> Zuva] PastErrorInformation [confirmedByUser] value = " << *confirmedByUser;
  }
  if (const auto rest = zuvaServer.Get()) rest->Update_pastErrorInformation(key, valueWord, informationWord, confirmedByUser);
}

void CommunicationsManager::TellZuvaToUpdate_BatteryCareModes(
    const Opt<cmc::DT_ChargingManagementCore_batteryCareModes_type>& type, const Opt<std::uint32_t>& chargeBcamThreshold,
    const Opt<cmc::DT_ChargingManagementCore_batteryCareModes_notification>& notification,
    const Opt<cmc::DT_ChargingManagementCore_batteryCareModes_popup>& popup, const Opt<float>& bcamScoreThreshold) {
  const std::lock_guard lock{mutexBatteryCareModes};
  const auto key = Key(logger, type, Mapped("BatteryCareModes [type]"), "[CommMngr][Someip -> Zuva] BatteryCareModes type invalid");
  if (!key) return;
  const auto notificationWord = Translated(logger, notification, Mapped("BatteryCareModes [notification]"));
  const auto popupWord = Translated(logger, popup, Mapped("BatteryCareModes [popup]"));
  if (const auto rest = zuvaServer.Get()) {
    rest->Update_batteryCareModes(key, notificationWord, popupWord, chargeBcamThreshold, bcamScoreThreshold);  // other order, on purpose
  }
}

void CommunicationsManager::TellZuvaToUpdate_BatteryPreconditionings(
    const Opt<cmc::DT_ChargingManagementCore_batteryPreconditionings_type>& type,
    const Opt<cmc::DT_ChargingManagementCore_batteryPreconditionings_preconditioningState>& preconditioningState) {
  const std::lock_guard lock{mutexBatteryPreconditionings};
  // A good type writes no line here and in the next operation, unlike in the others.
  const auto key = Key(logger, type, kSilent, "[CommMngr][Someip -> Zuva] BatteryPreconditionings type invalid");
  if (!key) return;
  const auto stateWord = Translated(logger, preconditioningState, Mapped("BatteryPreconditionings [preconditioningState]"));
  if (const auto rest = zuvaServer.Get()) rest->Update_batteryPreconditionings(key, stateWord);
}

void CommunicationsManager::TellZuvaToUpdate_BatteryPreconditioningEnergies(
    const Opt<cmc::DT_ChargingManagementCore_batteryPreconditioningEnergies_type>& type, const Opt<std::uint32_t>& firstStop,
    const Opt<std::uint32_t>& nextStops) {
  const std::lock_guard lock{mutexBatteryPreconditioningEnergies};
  const auto key = Key(logger, type, kSilent, "[CommMngr][Someip -> Zuva] BatteryPreconditioningEnergies type invalid");
  if (!key) return;
  if (const auto rest = zuvaServer.Get()) rest->Update_batteryPreconditioningEnergies(key, firstStop, nextStops);
}

void CommunicationsManager::TellZuvaToUpdate_ChargingPlugs(
    const Opt<cmc::DT_ChargingManagementCore_chargingPlugs_type>& type,
    const Opt<cmc::DT_ChargingManagementCore_chargingPlugs_infrastructureState>& infrastructureState,
    const Opt<cmc::DT_ChargingManagementCore_chargingPlugs_plugConnectionState>& plugConnectionState,
    const Opt<cmc::DT_ChargingManagementCore_chargingPlugs_plugType>& plugType) {
  const std::lock_guard lock{mutexChargingPlugs};
  const auto key = Key(logger, type, Mapped("ChargingPlug [type]"), "[CommMngr][Someip -> Zuva] ChargingPlug type invalid");
  if (!key) return;
  const auto infrastructureWord = Translated(logger, infrastructureState, Mapped("ChargingPlug [infrastructureState]"));
  const auto connectionWord = Translated(logger, plugConnectionState, Mapped("ChargingPlug [plugConnectionState]"));
  const auto plugWord = Translated(logger, plugType, Mapped("ChargingPlug [plugType]"));
  if (const auto rest = zuvaServer.Get()) {
    rest->Update_ChargingPlugs(key, connectionWord, infrastructureWord, plugWord);  // other order, on purpose
  }
}

void CommunicationsManager::TellZuvaToUpdate_ResetToFactoryData(
    const Opt<cmc::DT_ChargingManagementCore_resetToFactoryData_resetToFactoryData>& resetToFactoryData,
    const Opt<std::uint64_t>& lastReset) {
  const std::lock_guard lock{mutexResetToFactoryData};
  // No key: the REST side has one kind of reset object only, and hears of every record.
  const auto word = Translated(logger, resetToFactoryData, Mapped("ResetToFactoryData [resetFactoryData]"));
  if (lastReset) logger.LogInfo() << "[CommMngr][Someip -> Zuva] Timestamp updated: " << *lastReset;
  if (const auto rest = zuvaServer.Get()) rest->Update_resetToFactoryData(word, lastReset);
}

}  // namespace trov::commMngr
