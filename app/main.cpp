#include "app/pause.h"
#include "app/phase_reports.h"
#include "app/stop_signal.h"
#include "app/supervision.h"
#include "ara/exec/application_client.h"
#include "ara/log/logging.h"
#include "ara/phm/health_channel.h"
#include "ara/phm/phm_client.h"
#include "ara/phm/supervision_entity.h"
#include "commmngr/communications_manager.h"
#include "rest/server/trov_zuva_server.h"
#include "someip/cmc/charging_management_core_listener.h"
#include "someip/cmc/charging_management_core_proxy_wrapper.h"
#include "someip/rbec/route_based_energy_contents_listener.h"
#include "someip/rbec/route_based_energy_contents_proxy_wrapper.h"
#include "someip/sync/someip_sync.h"
#include "xr/com/runtime/component_singleton.h"

#include <chrono>
#include <exception>
#include <memory>
#include <string>
#include <thread>

#include <malloc.h>

/// Builds the bridge, wires it, waits for a stop signal and takes the bridge down again.
///
/// Everything that lives as long as the process is owned here. There is no recovery from a failed construction: the exception leaves
/// main while the supervision thread runs, so the process ends by abort, and a half-built bridge never runs.
int main() {
  app::InstallStopSignals();
  ::mallopt(M_TRIM_THRESHOLD, 1024 * 1024);  // or each burst of frames would get its memory from the system anew

  static const std::string name = "TROV";
  static const std::string version = "1.10.10";
  static const std::string process = "TROV__PLNT5_Sys_Adaptive_01";

  std::thread supervision;  // first, so that it is the last to go when construction fails
  const ara::phm::Phm_client phmClient{process};
  const ara::phm::SupervisionEntity supervisionEntity{phmClient};
  const ara::phm::HealthChannel healthChannel{phmClient};
  const ara::exec::ApplicationClient applicationClient;
  const app::PhaseReports reports{supervisionEntity, healthChannel, applicationClient};

  supervision = app::StartSupervision(supervisionEntity);
  applicationClient.ReportApplicationState(ara::exec::ApplicationState::kRunning);  // unguarded: without a first report no start
  ara::log::InitLogging(name, "TROV Application", ara::log::LogLevel::kInfo, ara::log::LogMode::kRemote, "");
  const ara::log::Logger& logger = ara::log::CreateLogger("TROV_MAIN", "main");
  logger.LogInfo() << name << " version " << version << " has started!";
  auto runtime = std::make_unique<xr::com::runtime::Component_singleton>(false, "");

  reports.InitBegins();
  auto server = std::make_shared<trov::zuvaServer::TROVZuVaServer>(
      "charging_management_core", "/opt/TROV__PLNT5_Sys_Adaptive_01/etc/charging_management_core_conf.json");
  auto cmcWrapper = std::make_shared<trov::chargingManagementCoreListener::ChargingManagementCoreProxyWrapper>();
  auto cmcListener = std::make_shared<trov::chargingManagementCoreListener::ChargingManagementCoreListener>(cmcWrapper);
  auto rbecWrapper = std::make_shared<trov::routeBasedEnergyContents::RouteBasedEnergyContentsProxyWrapper>();
  auto rbecListener = std::make_shared<trov::routeBasedEnergyContents::RouteBasedEnergyContentsListener>(rbecWrapper);
  auto mediator = std::make_shared<trov::commMngr::CommunicationsManager>();

  server->SetCommunicationsManager(mediator);
  cmcListener->SetCommunicationsManager(mediator);
  rbecListener->SetCommunicationsManager(mediator);
  mediator->SetZuva(server);
  mediator->SetSomeIp(cmcListener);
  mediator->SetRbec(rbecListener);

  auto synchroniser = std::make_shared<trov::someipSync::SomeipSync>(std::chrono::seconds{5}, std::chrono::seconds{120});
  synchroniser->AddClient(cmcListener);
  synchroniser->AddClient(rbecListener);
  synchroniser->StartSync();
  server->StartServer();  // starts the listeners too, through the mediator
  reports.InitEnded();

  while (!app::StopRequested()) app::SleepHalfSecond();

  try {
    server->StopServer();
  } catch (const std::exception& error) {  // the rest of the stop does not depend on it
    logger.LogError() << "Exception at stopping the server: " << error.what();
  }
  reports.ShutdownBegins();
  server->SetCommunicationsManager(nullptr);
  cmcListener->SetCommunicationsManager(nullptr);
  rbecListener->SetCommunicationsManager(nullptr);
  mediator->SetZuva(nullptr);
  mediator->SetSomeIp(nullptr);
  mediator->SetRbec(nullptr);
  logger.LogInfo() << "Ended main block.";

  synchroniser.reset();  // joins its thread
  mediator.reset();
  rbecListener.reset();
  rbecWrapper.reset();
  cmcListener.reset();
  cmcWrapper.reset();
  server.reset();
  runtime.reset();
  reports.ShutdownEnded();
  app::StopSupervision(supervision);
  logger.LogInfo() << name << " version " << version << " has stopped!";
  return 0;
}
