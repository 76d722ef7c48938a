#pragma once

#include "someip/cmc/notification_texts.h"
#include "someip/cmc/resources.h"
#include "someip/texts.h"

namespace trov::chargingManagementCoreListener {

/// One row a resource; a resource without a row does not build.
template <class R>
extern const someip::GetRow kGot;

// clang-format off
template <> inline constexpr someip::GetRow kGot<ChargingPlugs>{"chargingPlugs", "[SomeIp] ChargingPlug object has no type... Ignoring struct..."};
template <> inline constexpr someip::GetRow kGot<ChargingProcessInformation>{"chargingProcessInformation", {}};
template <> inline constexpr someip::GetRow kGot<NotificationMarkers>{"notificationMarkers", "[SomeIp] NotificationMarker object has no type... Ignoring struct..."};
template <> inline constexpr someip::GetRow kGot<Notifications>{"notifications", "[SomeIp] Notification object has no type... Ignoring struct..."};
template <> inline constexpr someip::GetRow kGot<OruUpdateApprovals>{"oruUpdateApprovals", "[SomeIp] OruUpdateApproval object has no type... Ignoring struct..."};
template <> inline constexpr someip::GetRow kGot<PastErrorInformation>{"pastErrorInformation", "[SomeIp][SomeIp -> Zuva] PastErrorInformation has no type... Ignoring struct..."};
template <> inline constexpr someip::GetRow kGot<SwitchControls>{"switchControls", {}};
template <> inline constexpr someip::GetRow kGot<ValueIndications>{"valueIndications", {}};
template <> inline constexpr someip::GetRow kGot<Views>{"views", kNotified<Views>.noType};
template <> inline constexpr someip::GetRow kGot<FactoryResetData>{"resetToFactory", {}};
template <> inline constexpr someip::GetRow kGot<ValueControls>{"ValueControl", "[SomeIp][SomeIpGET -> Zuva] ValueControl object has no type... Ignoring struct..."};
template <> inline constexpr someip::GetRow kGot<BidirectionalChargingModes>{"BidirectionalChargingModes", "[SomeIp][SomeIpGET -> Zuva] BidirectionalChargingModes object has no type... Ignoring struct..."};
// The last three say the words of their notification, on purpose.
template <> inline constexpr someip::GetRow kGot<BatteryCareModes>{"BatteryCareModes", kNotified<BatteryCareModes>.noType};
template <> inline constexpr someip::GetRow kGot<BatteryPreconditionings>{"BatteryPreconditionings", kNotified<BatteryPreconditionings>.noType};
template <> inline constexpr someip::GetRow kGot<BatteryPreconditioningEnergies>{"BatteryPreconditioningEnergies", kNotified<BatteryPreconditioningEnergies>.noType};
// clang-format on

}  // namespace trov::chargingManagementCoreListener
