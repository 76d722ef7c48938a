#pragma once

#include <future>
#include <memory>
#include <mutex>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "ara/log/logger.h"
#include "ara/rest/allocator.h"
#include "ara/rest/uri.h"
#include "commmngr/interfaces/comm_mngr_zuva_side_interface.h"
#include "commmngr/interfaces/trov_zuva_server_interface.h"
#include "model/guarded.h"
#include "rest/server/post_outcome.h"
#include "rest/typed_elements.h"

namespace ara::rest::ogm {
class Object;
}

namespace zuva {
class ServerXObject;
class BaseXObject;
}  // namespace zuva

namespace zuva::server::charging_management_core {
class PastErrorInformationObject;
class ChargingPlugObject;
class SwitchControlObject;
class ValueControlObject;
class ViewObject;
}  // namespace zuva::server::charging_management_core

namespace zuva::server::factory_reset {
class ResetObject;
}

class ZuvaServer;

namespace trov::zuvaServer {

/// The REST side of the bridge: builds the server and its objects, hands what clients write to the mediator, and carries what the vehicle
/// reports into the objects.
///
/// Life: constructor, `SetCommunicationsManager`, `StartServer`, `StopServer`, all on one thread. The Update_* operations and the
/// framework's callbacks run on other threads in between.
/// A server that could not be made stays null. The object then exists, but the first use of it ends the process, on purpose.
class TROVZuVaServer : public TROVZuVaServerInterface {
 public:
  /// `configPath` names the framework's own configuration file. Reports a failure by log alone.
  TROVZuVaServer(const std::string& name, const std::string& configPath);
  ~TROVZuVaServer() override;
  TROVZuVaServer(const TROVZuVaServer&) = delete;
  TROVZuVaServer& operator=(const TROVZuVaServer&) = delete;

  /// Any thread; an empty pointer disconnects.
  void SetCommunicationsManager(std::shared_ptr<commMngr::CommMngrZuvaSideInterface> mediator);
  /// Populates, hooks the write path, publishes, serves, and has the listeners started. Reports a failure by log alone: what was reached
  /// before it stays.
  void StartServer();
  /// Ends serving and waits for requests in work. Gives the framework's status.
  bool StopServer();
  /// All objects of the start. A second run would double them.
  void PopulateServer();
  void AddServerMetaData();
  void SendRequestSomeIpListenerStart();
  /// Puts the application's own checks and the way to the vehicle around the object checks of everything that clients may write.
  void RegisterPreUpdateCallBacks();

  /// Announces both services at the registry, or withdraws them. Waits for the service's former change; not to be called twice at once.
  void Update_Registry(bool available) override;
  void Update_ValueControls(types::ValueControlsMappedTuple&& control) override;
  void Update_SwitchControls(const Word& type, const Word& switchValue, const Word& restrictionReason,
                             const Words& switchValueConfiguration) override;
  void Update_ChargingPlugs(const Word& type, const Word& plugConnectionState, const Word& infrastructureState,
                            const Word& plugType) override;
  void Update_Views(const Word& type, const Word& content, const Word& visibility) override;
  void Update_Notifications(const Word& type, const Word& value, const Word& additionalInformation) override;
  void Update_NotificationMarkers(const Word& type, const Opt<bool>& isToBeNotified) override;
  void Update_OruUpdateApprovals(const Word& type, const Opt<bool>& updateApproval) override;
  void Update_chargingProcessInformation(types::ChargingProcessInformationMappedTuple&& process) override;
  void Update_valueIndications(types::ValueIndicationsMappedTuple&& indication) override;
  void Update_pastErrorInformation(const Word& type, const Word& value, const Word& additionalInformation,
                                   const Opt<bool>& confirmedByUser) override;
  void Update_resetToFactoryData(const Word& resetToFactoryData, const Opt<std::uint64_t>& lastReset) override;
  void Update_batteryCareModes(const Word& type, const Word& notification, const Word& popup, const Opt<std::uint32_t>& chargeBcamThreshold,
                               const Opt<float>& bcamScoreThreshold) override;
  void Update_batteryPreconditionings(const Word& type, const Word& preconditioningState) override;
  void Update_batteryPreconditioningEnergies(const Word& type, const Opt<std::uint32_t>& firstStop,
                                             const Opt<std::uint32_t>& nextStops) override;
  void Update_BidirectionalChargingModes(types::BidirectionalChargingModesMappedTuple&& mode) override;
  void Update_NavTargetSoc(const std::uint8_t& targetSoc) override;

 protected:
  /// The framework's server. If it was never made, this ends the process.
  ZuvaServer& Server() const;

 private:
  using ChargingPlugObject = zuva::server::charging_management_core::ChargingPlugObject;
  using PastErrorInformationObject = zuva::server::charging_management_core::PastErrorInformationObject;
  using SwitchControlObject = zuva::server::charging_management_core::SwitchControlObject;
  using ValueControlObject = zuva::server::charging_management_core::ValueControlObject;
  using ViewObject = zuva::server::charging_management_core::ViewObject;
  using ResetObject = zuva::server::factory_reset::ResetObject;
  template <class T>
  using Objects = zuva::server::ElementList<T>;
  using RegistryUris = std::vector<ara::rest::Uri, ara::rest::StdAllocator<ara::rest::Uri>>;

  // Population
  void CreateNotificationMarkerObjects();
  void CreateCPIObjects();
  void CreateNotificationObjects();
  void CreatePastErrInfoObjects();
  void CreateBatteryCarModeObjects();
  void CreateBidirectionalChargingModesObjects();
  void CreateOtherObjects();
  void CreateImmediateChargingOptionsObjects();
  void CreateImmediateActionObjects();
  void CreateBatteryPreconditioningEnergiesObjects();
  void CreateBatteryPreconditioningsObjects();

  // Client writes
  void SetPreupdateCallbacks(const Objects<ValueControlObject>& objects);
  void SetPreupdateCallbacks(const std::shared_ptr<ViewObject>& object);
  void SetPreupdateCallbacks(const Objects<SwitchControlObject>& objects);
  void SetPreupdateCallbacks(const Objects<PastErrorInformationObject>& objects);
  void SetPreupdateCallbacks(const Objects<ResetObject>& objects);
  void InitSetup(const std::shared_ptr<SwitchControlObject>& object);

  template <class T>
  using PostHandler = PostStatus (TROVZuVaServer::*)(const ara::rest::ogm::Object& posted, std::shared_ptr<T> object);
  using PostCheck = bool (TROVZuVaServer::*)(const ara::rest::ogm::Object& posted) const;
  /// Puts the handler behind the object's present callback: if that accepts, the handler's status decides by the row.
  template <class T>
  void Wrap(zuva::ServerXObject& object, PostHandler<T> handler, const PostRow& row);
  /// Puts a check before the object's present callback: any result but the expected one gets the answer.
  void Guard(zuva::ServerXObject& object, PostCheck check, bool expected, const PostAnswer& answer);

  PostStatus View_POSThandler(const ara::rest::ogm::Object& posted, std::shared_ptr<ViewObject> object);
  PostStatus SwitchControl_POSThandler(const ara::rest::ogm::Object& posted, std::shared_ptr<SwitchControlObject> object);
  PostStatus ValueControl_POSThandler(const ara::rest::ogm::Object& posted, std::shared_ptr<ValueControlObject> object);
  PostStatus PastErrInfo_POSThandler(const ara::rest::ogm::Object& posted, std::shared_ptr<PastErrorInformationObject> object);
  PostStatus ResetFactory_POSThandler(const ara::rest::ogm::Object& posted, std::shared_ptr<zuva::BaseXObject> object);
  /// Whether a switch value is posted that is no action. The opposite sense of its neighbour, on purpose.
  bool Startstopcharging_POSThandler(const ara::rest::ogm::Object& posted) const;
  /// Whether a switch value is posted that is a lock word.
  bool Plugflaplockstate_POSThandler(const ara::rest::ogm::Object& posted) const;
  bool Validate_SwitchControl(const SwitchControlObject& object, const std::string& value) const;
  bool Validate_ValueControl(const ValueControlObject& object, std::uint32_t value) const;
  bool Evaluate_SetStatus(std::string_view name, enums::SOMEIP_RESPONSE_TYPE response) const;
  /// Asks the mediator; without one the set has failed.
  template <class Request>
  PostStatus Ask(std::string_view name, Request&& request) const;

  // Updates of objects that may be new
  /// `addToServer`: the object is new and goes into the service.
  void SetFields_Views(std::shared_ptr<ViewObject> object, const Word& content, const Word& visibility, bool addToServer);
  /// `removeAbsent`: the object existed, so an empty optional removes its field. The opposite sense of the views' flag.
  void SetFields_ChargingPlugs(std::shared_ptr<ChargingPlugObject> object, const Word& plugConnectionState, const Word& infrastructureState,
                               const Word& plugType, bool removeAbsent);
  /// The lock control of this type, made if there is none. With `switchControlMutex_` held.
  std::shared_ptr<SwitchControlObject> LockControlLocked(const std::string& type);
  void SetFields_SwitchControls(std::shared_ptr<SwitchControlObject> object, const Word& switchValue, const Word& restrictionReason,
                                const Words& switchValueConfiguration, bool removeAbsent);

  // Released in reverse order; the tasks hold what they use, and are waited for last.
  std::future<void> chargingRegistryTask_;
  std::future<void> factoryResetRegistryTask_;
  const RegistryUris registryUris_;
  const std::vector<std::string> lockWords_;
  const std::vector<std::string> actionWords_;
  std::mutex switchControlMutex_;  // orders every creation of a switch control; guards no member
  const std::string name_;
  const std::string configPath_;
  std::shared_ptr<ZuvaServer> server_;  // null for ever if making it failed
  Guarded<commMngr::CommMngrZuvaSideInterface> mediator_;
  std::unordered_map<std::string, std::shared_ptr<ViewObject>> viewObjectMap_;  // filled before the start, only read afterwards
  const ara::log::Logger& logger_;
};

}  // namespace trov::zuvaServer
