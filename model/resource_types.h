#pragma once

#include <cstdint>

namespace trov::enums {

/// One numbering of the resources of both vehicle services. 13 is not used: it is a resource that nobody serves.
///
/// From 14 on the number is not the index of an alternative of the payload variants.
enum class SOMEIP_RESOURCE_TYPE : std::uint8_t {
  ChargingPlugs = 0,
  ValueControls = 1,
  SwitchControls = 2,
  Views = 3,
  NotificationMarkers = 4,
  OruUpdateApprovals = 5,
  Notifications = 6,
  FactoryResetData = 7,
  chargingProcessInformation = 8,
  valueIndications = 9,
  pastErrorInformation = 10,
  BatteryCareModes = 11,
  TargetSocChargings = 12,  // of RouteBasedEnergyContents, all others of ChargingManagementCore
  BidirectionalChargingModes = 14,
  BatteryPreconditionings = 15,
  BatteryPreconditioningEnergies = 16,
};

/// How a set request toward the vehicle ended. 3 is not assigned.
enum class SOMEIP_RESPONSE_TYPE : std::uint32_t {
  SET_SUCCESS = 0,        // the field's setter answered in time
  SET_DATA_MISMATCH = 1,  // the answer differs from what was sent; nothing produces it
  SET_TIMEOUT = 2,        // no answer within the time-out
  SET_ERROR = 4,          // translation failed, the service is absent, or the set threw
};

}  // namespace trov::enums
