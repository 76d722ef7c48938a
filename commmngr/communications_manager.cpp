#include "commmngr/communications_manager.h"

#include <utility>

namespace trov::commMngr {

CommunicationsManager::CommunicationsManager() : logger{ara::log::CreateLogger("TROV", "Charging Management Core Communication Manager")} {}

void CommunicationsManager::SetZuva(std::shared_ptr<zuvaServer::TROVZuVaServerInterface> server) {
  zuvaServer.Set(std::move(server));
}

void CommunicationsManager::SetSomeIp(std::shared_ptr<chargingManagementCoreListener::TROVListenerInterface> listener) {
  someIpListener.Set(std::move(listener));
}

void CommunicationsManager::SetRbec(std::shared_ptr<routeBasedEnergyContents::RouteBasedEnergyContentsListenerInterface> listener) {
  rbecListener.Set(std::move(listener));
}

void CommunicationsManager::TellSomeIpToStartListener() {
  if (const auto listener = someIpListener.Get()) listener->StartListener();
  if (const auto listener = rbecListener.Get()) listener->StartListener();
  logger.LogInfo() << "[CommMngr] Cmc and rbec listeners started";
}

void CommunicationsManager::TellZuvaToUpdate_Registry(bool available) {
  if (const auto rest = zuvaServer.Get()) rest->Update_Registry(available);
}

}  // namespace trov::commMngr
