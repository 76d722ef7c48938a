#pragma once

#include "someip/cmc/resources.h"
#include "someip/texts.h"

namespace trov::chargingManagementCoreListener {

/// One row a resource; a resource without a row does not build.
template <class R>
extern const someip::NotificationRow kNotified;

template <>
inline constexpr someip::NotificationRow kNotified<FactoryResetData>{
    .first = "[SomeIp][SomeIp -> Zuva] Received notification regarding factoryResetData..",
    .count = "[SomeIp][SomeIp -> Zuva] FactoryResetData notification: There are ",
    .empty = "[SomeIp][SomeIp -> Zuva] FactoryResetData notification: There are no elements in the CachedSamples. Returning...",
    .noType = {}};

template <>
inline constexpr someip::NotificationRow kNotified<BatteryCareModes>{
    .first = "[SomeIp][SomeIp -> Zuva] Received notification regarding BatteryCareModes..",
    .count = "[SomeIp][SomeIp -> Zuva] BatteryCareModes notification: There are ",
    .empty = "[SomeIp][SomeIp -> Zuva] BatteryCareModes notification: There are no elements in the CachedSamples. Returning...",
    .noType = "[SomeIp][SomeIp -> Zuva] BatteryCareModes object has no type... Ignoring notification..."};

template <>
inline constexpr someip::NotificationRow kNotified<BatteryPreconditionings>{
    .first = "[SomeIp][SomeIp -> Zuva] Received notification regarding BatteryPreconditionings..",
    .count = "[SomeIp][SomeIp -> Zuva] BatteryPreconditionings notification: There are ",
    .empty = "[SomeIp][SomeIp -> Zuva] BatteryPreconditionings notification: There are no elements in the CachedSamples. Returning...",
    .noType = "[SomeIp][SomeIp -> Zuva] BatteryPreconditionings object has no type... Ignoring notification..."};

template <>
inline constexpr someip::NotificationRow kNotified<BatteryPreconditioningEnergies>{
    .first = "[SomeIp][SomeIp -> Zuva] Received notification regarding BatteryPreconditioningEnergies..",
    .count = "[SomeIp][SomeIp -> Zuva] BatteryPreconditioningEnergies notification: There are ",
    .empty =
        "[SomeIp][SomeIp -> Zuva] BatteryPreconditioningEnergies notification: There are no elements in the CachedSamples. Returning...",
    .noType = "[SomeIp][SomeIp -> Zuva] BatteryPreconditioningEnergies object has no type... Ignoring notification..."};

template <>
inline constexpr someip::NotificationRow kNotified<BidirectionalChargingModes>{
    .first = "[SomeIp][SomeIp -> Zuva] Received notification regarding BidirectionalChargingModes..",
    .count = "[SomeIp][SomeIp -> Zuva] BidirectionalChargingModes notification: There are ",
    .empty = kNotified<BatteryCareModes>.empty,  // its neighbour's words, on purpose
    .noType = "[SomeIp][SomeIp -> Zuva] BidirectionalChargingModes object has no type... Ignoring notification..."};

template <>
inline constexpr someip::NotificationRow kNotified<ValueControls>{
    .first = "[SomeIp][SomeIp -> Zuva] Received notification regarding valueControls..",
    .count = "[SomeIp][SomeIp -> Zuva] ValueControls notification: There are ",
    .empty = "[SomeIp][SomeIp -> Zuva] ValueControls notification: There are no elements in the CachedSamples. Returning...",
    .noType = "[SomeIp][SomeIp -> Zuva] ValueControl object has no type... Ignoring notification..."};

template <>
inline constexpr someip::NotificationRow kNotified<SwitchControls>{
    .first = "[SomeIp] Received notification regarding switchControls..",
    .count = "[SomeIp] SwitchControls notification: There are ",
    .empty = "[SomeIp] SwitchControls notification: There are no elements in the CachedSamples. Returning...",
    .noType = {}};

template <>
inline constexpr someip::NotificationRow kNotified<ChargingPlugs>{
    .first = "[SomeIp] Received notification regarding chargingPlugs..",
    .count = "[SomeIp] ChargingPlugs notification: There are ",
    .empty = "[SomeIp] ChargingPlugs notification: There are no elements in the CachedSamples. Returning...",
    .noType = {}};

template <>
inline constexpr someip::NotificationRow kNotified<Views>{
    .first = "[SomeIp][SomeIp -> Zuva] Received notification regarding views..",
    .count = "[SomeIp][SomeIp -> Zuva] Views notification: There are ",
    .empty = "[SomeIp][SomeIp -> Zuva] Views notification: There are no elements in the CachedSamples. Returning...",
    .noType = "[SomeIp][SomeIp -> Zuva] View object has no type... Ignoring notification..."};

template <>
inline constexpr someip::NotificationRow kNotified<Notifications>{
    .first = "[SomeIp] Received notification regarding notifications..",
    .count = "[SomeIp] Notifications notification: There are ",
    .empty = "[SomeIp] Notifications notification: There are no elements in the CachedSamples. Returning...",
    .noType = "[SomeIp] Notification object has no type... Ignoring notification..."};

template <>
inline constexpr someip::NotificationRow kNotified<NotificationMarkers>{
    .first = "[SomeIp] Received notification regarding notificationMarkers..",
    .count = "[SomeIp] NotificationMarkers notification: There are ",
    .empty = "[SomeIp] NotificationMarkers notification: There are no elements in the CachedSamples. Returning...",
    .noType = "[SomeIp] NotificationMarker object has no type... Ignoring notification..."};

template <>
inline constexpr someip::NotificationRow kNotified<OruUpdateApprovals>{
    .first = "[SomeIp] Received notification regarding oruUpdateApprovals..",
    .count = "[SomeIp] OruUpdateApprovals notification: There are ",
    .empty = "[SomeIp] OruUpdateApprovals notification: There are no elements in the CachedSamples. Returning...",
    .noType = "[SomeIp] OruUpdateApproval object has no type... Ignoring notification..."};

template <>
inline constexpr someip::NotificationRow kNotified<PastErrorInformation>{
    .first = "[SomeIp][SomeIp -> Zuva] Received notification regarding pastErrorInformation...",
    .count = "[SomeIp] PastErrorInformation notification: There are ",  // begins differently from its other lines, on purpose
    .empty = "[SomeIp][SomeIp -> Zuva] PastErrorInformation notification: There are no elements in the CachedSamples. Returning...",
    .noType = "[SomeIp][SomeIp -> Zuva] PastErrorInformation_str object has no type... Ignoring notification...",
    .needsProxy = true};

template <>
inline constexpr someip::NotificationRow kNotified<ValueIndications>{
    .first = "[SomeIp] Received notification regarding valueIndications...",
    .count = "[SomeIp] ValueIndications notification: There are ",
    .empty = "[SomeIp] ValueIndications notification: There are no elements in the CachedSamples. Returning...",
    .noType = {},
    .needsProxy = true};

template <>
inline constexpr someip::NotificationRow kNotified<ChargingProcessInformation>{
    .first = "[SomeIp] Received notification regarding chargingProcessInformation...",
    .count = "[SomeIp] ChargingProcessInformation notification: There are ",
    .empty = "[SomeIp] ChargingProcessInformation notification: There are no elements in the CachedSamples. Returning...",
    .noType = {},
    .needsProxy = true};

}  // namespace trov::chargingManagementCoreListener
