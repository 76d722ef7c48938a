#include <utility>

#include "someip/cmc/charging_management_core_listener.h"
#include "someip/listening.h"

// How the listener comes alive: find, first appearance, subscriptions, loss and return.
namespace trov::chargingManagementCoreListener {

ChargingManagementCoreListener::ChargingManagementCoreListener(std::shared_ptr<ChargingManagementCoreProxyInterface> wrapper)
    : proxyWrapper{std::move(wrapper)}, logger{ara::log::CreateLogger("TROV", "Charging Management Core proxy")} {}

void ChargingManagementCoreListener::SetCommunicationsManager(std::shared_ptr<commMngr::CommMngrSomeipSideInterface> manager) {
  commMngr.Set(std::move(manager));
}

void ChargingManagementCoreListener::StartListener() {
  proxyWrapper->StartFindService([weak = weak_from_this()](std::vector<Handle_type> handles) {
    if (const auto self = weak.lock()) self->OnServiceFound(std::move(handles));
  });
  logger.LogInfo() << someip::kFindStarted;
}

void ChargingManagementCoreListener::OnServiceFound(std::vector<Handle_type> handles) {
  const auto tellRegistry = [this](bool available) {
    if (const auto manager = commMngr.Get()) manager->TellZuvaToUpdate_Registry(available);
  };
  // The first appearance leaves the registry alone: it is told of returns only.
  someip::FollowService(
      *proxyWrapper, handles, logger, incomplete, [this] { StartListeningToSomeIp(); }, [&] { tellRegistry(false); },
      [&] { tellRegistry(true); });
}

void ChargingManagementCoreListener::Listen(enums::SOMEIP_RESOURCE_TYPE resource, void (ChargingManagementCoreListener::*handler)(),
                                            std::string_view subscribed) {
  // The handler goes in first, so that no first sample finds the event without one.
  proxyWrapper->SetReceiveHandler(resource, [weak = weak_from_this(), handler] {
    if (const auto self = weak.lock()) (*self.*handler)();
  });
  proxyWrapper->Subscribe(resource);
  logger.LogInfo() << subscribed;
}

void ChargingManagementCoreListener::StartListeningToSomeIp() {
  using Resource = enums::SOMEIP_RESOURCE_TYPE;
  using Self = ChargingManagementCoreListener;
  // clang-format off
  Listen(Resource::ChargingPlugs,                  &Self::OnReceived_ChargingPlugs,                  "[SomeIp] Subscribed to ChargingPlugs resource..");
  Listen(Resource::ValueControls,                  &Self::OnReceived_ValueControls,                  "[SomeIp] Subscribed to ValueControls resource..");
  Listen(Resource::SwitchControls,                 &Self::OnReceived_SwitchControls,                 "[SomeIp] Subscribed to SwitchControls resource..");
  Listen(Resource::Views,                          &Self::OnReceived_Views,                          "[SomeIp] Subscribed to Views resource..");
  Listen(Resource::NotificationMarkers,            &Self::OnReceived_NotificationMarkers,            "[SomeIp] Subscribed to NotificationMarkers resource..");
  Listen(Resource::OruUpdateApprovals,             &Self::OnReceived_OruUpdateApprovals,             "[SomeIp] Subscribed to OruUpdateApprovals resource..");
  Listen(Resource::Notifications,                  &Self::OnReceived_Notifications,                  "[SomeIp] Subscribed to Notifications resource..");
  Listen(Resource::FactoryResetData,               &Self::OnReceived_FactoryResetData,               "[SomeIp] Subscribed to FactoryResetData resource..");
  Listen(Resource::chargingProcessInformation,     &Self::OnReceived_chargingProcessInformation,     "[SomeIp] Subscribed to chargingProcessInformation resource..");
  Listen(Resource::valueIndications,               &Self::OnReceived_valueIndications,               "[SomeIp] Subscribed to valueIndications resource..");
  Listen(Resource::pastErrorInformation,           &Self::OnReceived_pastErrorInformation,           "[SomeIp] Subscribed to pastErrorInformation resource..");
  Listen(Resource::BatteryCareModes,               &Self::OnReceived_BatteryCareModes,               "[SomeIp] Subscribed to BatteryCareModes resource..");
  // The last three are not in the order of their numbers: 15, 16, then 14.
  Listen(Resource::BatteryPreconditionings,        &Self::OnReceived_BatteryPreconditionings,        "[SomeIp] Subscribed to BatteryPreconditionings resource..");
  Listen(Resource::BatteryPreconditioningEnergies, &Self::OnReceived_BatteryPreconditioningEnergies, "[SomeIp] Subscribed to BatteryPreconditioningEnergies resource..");
  Listen(Resource::BidirectionalChargingModes,     &Self::OnReceived_BidirectionalChargingModes,     "[SomeIp] Subscribed to BidirectionalChargingModes resource..");
  // clang-format on
}

}  // namespace trov::chargingManagementCoreListener
