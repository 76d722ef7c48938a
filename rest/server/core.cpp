#include "rest/server/trov_zuva_server.h"

#include <ctime>
#include <exception>
#include <utility>

#include "ara/log/logging.h"
#include "os/thread.h"
#include "rest/generated/zuva_server.h"

namespace trov::zuvaServer {
namespace {

constexpr const char* kRegistryUri = "http://[::1]/";
constexpr const char* kChargingManagementCoreVersion = "0.10.1";
constexpr const char* kFactoryResetVersion = "1.3.0";

ara::rest::Uri RegistryUri() {
  return ara::rest::Uri::Builder{kRegistryUri, ara::rest::GetDefaultAllocator()}.ToUri();
}

// All other resources show what their model says, which is their text in the specification document too. These three differ from it.
void Describe(ZuvaServer& server) {
  server.GetChargingManagementCoreImmediateActions()->SetDescription(
      "immediateActions stop a running charging process or can start a chargingprocess with a defined charging end criteria. The charging "
      "end criteria is only valid once");
  server.GetChargingManagementCoreNotifications()->SetDescription("This are the charging notifications");
  server.GetChargingManagementCorePastErrorInformation()->SetDescription("past errors of a charging process");
}

/// Runs a change of the registry on a thread of its own. Waits for the former one first, so that the last change is the one that stays.
/// A task that found no thread is dropped unrun when its future goes.
template <class Change>
void Replace(std::future<void>& task, Change change) {
  task = {};
  task = std::async([change = std::move(change)] {
    os::NameThisThread("registry");
    change();
  });
}

}  // namespace

TROVZuVaServer::TROVZuVaServer(const std::string& name, const std::string& configPath)
    : registryUris_(1, RegistryUri(), ara::rest::StdAllocator<ara::rest::Uri>{ara::rest::GetDefaultAllocator()}),
      lockWords_{"unlocking", "locking"},
      actionWords_{"startImmediateCharging", "startImmediateActionTime", "stopCharging", "startChargeModeSelection"},
      name_{name},
      configPath_{configPath},
      logger_{ara::log::CreateLogger("TROV", "Charging Management Core zuva")} {
  tzset();  // localtime_r need not look at the time zone by itself
  try {
    auto server = ara::rest::MakeSharedPointer<ZuvaServer>(name_, configPath_);
    server->InitServices();
    server_ = std::move(server);
  } catch (...) {  // the object lives on without a server; whoever uses it ends the process
    logger_.LogError() << "Failed to start server: Make for ZuVa threw exception";
  }
}

TROVZuVaServer::~TROVZuVaServer() = default;

ZuvaServer& TROVZuVaServer::Server() const {
  if (server_) return *server_;
  logger_.LogFatal() << "There is no REST server to work with: the process ends";
  ara::log::DrainLogging();
  std::terminate();
}

void TROVZuVaServer::SetCommunicationsManager(std::shared_ptr<commMngr::CommMngrZuvaSideInterface> mediator) {
  mediator_.Set(std::move(mediator));
}

void TROVZuVaServer::StartServer() {
  try {
    logger_.LogInfo() << "Starting the server population...";
    PopulateServer();
    RegisterPreUpdateCallBacks();
    logger_.LogInfo() << "Registered preupdate callbacks...";
    AddServerMetaData();
    logger_.LogInfo() << "Starting ZuVa server...";
    Server().Start(false);
    logger_.LogInfo() << "Starting SomeIP listeners...";
    SendRequestSomeIpListenerStart();
  } catch (const std::exception& error) {
    logger_.LogError() << "Failed to start server:" << error;
    return;
  } catch (...) {  // the process goes on with what was reached
    logger_.LogError() << "Failed to start server: reason unknown";
    return;
  }
  logger_.LogInfo() << "Completed start of SomeIP listeners...";
}

bool TROVZuVaServer::StopServer() {
  return Server().Stop(true);
}

void TROVZuVaServer::AddServerMetaData() {
  const auto service = Server().GetChargingManagementCore();
  service->AddVersion(kChargingManagementCoreVersion);
  Server().GetFactoryReset()->AddVersion(kFactoryResetVersion);
  Describe(Server());
  // The resource is made with the others and taken away again; the service FactoryReset offers its function.
  logger_.LogInfo() << "Removing zuva server service ResetToFactoryData...";
  service->Remove(Server().GetChargingManagementCoreResetToFactoryData()->GetUuid());
}

void TROVZuVaServer::SendRequestSomeIpListenerStart() {
  if (const auto mediator = mediator_.Get()) mediator->TellSomeIpToStartListener();
}

void TROVZuVaServer::Update_Registry(bool available) {
  try {
    Server();
    if (available) {
      Replace(chargingRegistryTask_, [server = server_, uris = registryUris_] { server->GetChargingManagementCore()->Register(uris); });
      Replace(factoryResetRegistryTask_, [server = server_, uris = registryUris_] { server->GetFactoryReset()->Register(uris); });
      logger_.LogInfo() << "[Zuva] Will Register services";
    } else {
      Replace(chargingRegistryTask_, [server = server_] { server->GetChargingManagementCore()->Deregister(); });
      Replace(factoryResetRegistryTask_, [server = server_] { server->GetFactoryReset()->Deregister(); });
      logger_.LogInfo() << "[Zuva] Will Unregister services";
    }
  } catch (...) {  // no thread to be had; the registry keeps its state
    logger_.LogInfo() << (available ? "[Zuva] Exception caught while registering services to the zuva registry."
                                    : "[Zuva] Exception caught while unregistering services to the zuva registry.");
  }
}

}  // namespace trov::zuvaServer
