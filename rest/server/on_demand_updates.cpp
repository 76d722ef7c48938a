#include "rest/server/trov_zuva_server.h"

#include <array>
#include <memory>
#include <mutex>
#include <string>
#include <string_view>
#include <utility>

#include "ara/rest/uuid.h"
#include "rest/generated/zuva_server.h"
#include "rest/server/element_update.h"
#include "rest/server/made.h"

// Views, charging plugs and switch controls: the objects that come, and in part go, with the vehicle's reports.
namespace trov::zuvaServer {
namespace {

constexpr const char* kBcamScreen = "bcamScreen";
constexpr const char* kBcamInformation = "bcamInformationScreen";
constexpr const char* kBcamInitialInformation = "bcamInitialInformationScreen";

constexpr ErrorLines kViewLines{
    .domain = "[ZuVa][SomeIp -> Zuva] Domain error exception caught while updating View object: ",
    .other = "[ZuVa] Unknown exception caught while updating View object.",
};
constexpr ErrorLines kChargingPlugLines{
    .domain = "[ZuVa] Domain error exception caught while updating chargingPlug object: ",
    .other = "[ZuVa] Unknown exception caught while updating chargingPlug object.",
};
constexpr ErrorLines kSwitchControlLines{
    .domain = "[ZuVa] Domain error exception caught while updating switchControl object: ",
    .other = "[ZuVa] Unknown exception caught while updating switchControl object.",
};

bool IsNoView(const Word& content, const Word& visibility) {
  return !content.has_value() || content.value() == "nothing" || (visibility.has_value() && visibility.value() == "noView");
}

/// Whether one battery care screen is to give way to the other.
bool IsExchange(const std::string& present, const std::string& wanted) {
  return (wanted == kBcamInitialInformation && present == kBcamInformation) ||
         (wanted == kBcamInformation && present == kBcamInitialInformation);
}

/// The key in the map of the prepared views.
std::string PreparedView(const std::string& type, const std::string& content) {
  if (type != kBcamScreen) return type;
  return content == kBcamInformation ? kBcamInformation : kBcamInitialInformation;
}

Absent AbsentOf(bool removeAbsent) {
  return removeAbsent ? Absent::removes : Absent::stays;
}

}  // namespace

void TROVZuVaServer::Update_Views(const Word& type, const Word& content, const Word& visibility) {
  const auto prepared = [&](const std::string& key) {
    const auto found = viewObjectMap_.find(key);
    return found == viewObjectMap_.end() ? nullptr : found->second;
  };
  const auto object = FindByType<ViewObject>(*Server().GetChargingManagementCoreViews(), type);
  if (IsNoView(content, visibility)) {
    if (object) Server().Remove(object);
  } else if (!object) {
    SetFields_Views(prepared(PreparedView(type.value(), content.value())), content, visibility, true);
  } else if (type.value() == kBcamScreen && IsExchange(object->GetContent(), content.value())) {
    Server().Remove(object);  // clients see one element go and another come, never one that changes its screen
    SetFields_Views(prepared(content.value()), content, visibility, true);
  } else {
    SetFields_Views(object, content, visibility, false);
  }
}

void TROVZuVaServer::SetFields_Views(std::shared_ptr<ViewObject> object, const Word& content, const Word& visibility, bool addToServer) {
  if (!object) return;  // a type that no view has: nothing to show
  Protected(*object, Absent::removes, kViewLines, logger_, [&](ElementUpdate& update) {
    object->SetContent(content.value());
    update.Set("visibility", visibility);
    if (!addToServer) return;
    const auto uuid = ara::rest::Uuid::MakeV4();  // a view that comes back is another element to clients
    object->SetUuid(uuid);
    object->SetUri(zuva::server::ElementUri(ViewObject::kModel.resourceUri, uuid));
    Server().Add(object);
    logger_.LogInfo() << "[ZuVa][SomeIp -> Zuva] Added View object";
  });
}

void TROVZuVaServer::Update_ChargingPlugs(const Word& type, const Word& plugConnectionState, const Word& infrastructureState,
                                          const Word& plugType) {
  if (const auto present = FindByType<ChargingPlugObject>(*Server().GetChargingManagementCoreChargingPlugs(), type)) {
    SetFields_ChargingPlugs(present, plugConnectionState, infrastructureState, plugType, true);
    return;
  }
  logger_.LogInfo() << "[ZuVa][Someip -> Zuva] ChargingPlug object not found. It shall be created.";
  const auto plug = Made<ChargingPlugObject>(type.value());
  SetFields_ChargingPlugs(plug, plugConnectionState, infrastructureState, plugType, false);

  constexpr std::array<std::string_view, 2> kLinks{"FlapLockState", "PlugLockState"};
  const std::lock_guard lock{switchControlMutex_};
  for (std::size_t i = 0; i != kLinks.size(); ++i) {
    const auto control = LockControlLocked(type.value() + std::string{kLinks[i]});
    switch (i) {
      case 0:
        plug->Embed("flapLockState", control);
        break;
      case 1:
        plug->Embed("plugLockState", control);
        break;
      default:
        logger_.LogInfo() << "[ZuVa] Linkage unknown between charging_plug and switch_control.";
        break;  // for a longer list
    }
  }
  Server().Add(plug);
}

std::shared_ptr<TROVZuVaServer::SwitchControlObject> TROVZuVaServer::LockControlLocked(const std::string& type) {
  if (auto present = FindByType<SwitchControlObject>(*Server().GetChargingManagementCoreSwitchControls(), Word{type})) return present;
  auto control = Made<SwitchControlObject>(type);
  InitSetup(control);
  // The other creator of lock controls answers 400 here; the two stay different.
  Guard(*control, &TROVZuVaServer::Plugflaplockstate_POSThandler, true, kInternalError);
  Server().Add(control);
  return control;
}

void TROVZuVaServer::SetFields_ChargingPlugs(std::shared_ptr<ChargingPlugObject> object, const Word& plugConnectionState,
                                             const Word& infrastructureState, const Word& plugType, bool removeAbsent) {
  Protected(*object, AbsentOf(removeAbsent), kChargingPlugLines, logger_, [&](ElementUpdate& update) {
    update.Set("plugConnectionState", plugConnectionState);
    update.Set("infrastructureState", infrastructureState);
    update.Set("plugType", plugType);
  });
}

void TROVZuVaServer::Update_SwitchControls(const Word& type, const Word& switchValue, const Word& restrictionReason,
                                           const Words& switchValueConfiguration) {
  const std::lock_guard lock{switchControlMutex_};
  if (const auto present = FindByType<SwitchControlObject>(*Server().GetChargingManagementCoreSwitchControls(), type)) {
    SetFields_SwitchControls(present, switchValue, restrictionReason, switchValueConfiguration, true);
    return;
  }
  logger_.LogInfo() << "[ZuVa][Someip -> Zuva] SwitchControl object not found. It shall be created.";
  const auto control = Made<SwitchControlObject>(type.value());
  SetFields_SwitchControls(control, switchValue, restrictionReason, switchValueConfiguration, false);
  InitSetup(control);
  Guard(*control, &TROVZuVaServer::Plugflaplockstate_POSThandler, true, kNotInRange);
  Server().Add(control);
}

void TROVZuVaServer::SetFields_SwitchControls(std::shared_ptr<SwitchControlObject> object, const Word& switchValue,
                                              const Word& restrictionReason, const Words& switchValueConfiguration, bool removeAbsent) {
  Protected(*object, AbsentOf(removeAbsent), kSwitchControlLines, logger_, [&](ElementUpdate& update) {
    update.Set("switchValue", switchValue);
    update.Set("restrictionReason", restrictionReason);
    update.Set("switchValueConfiguration", switchValueConfiguration);
  });
}

}  // namespace trov::zuvaServer
