#pragma once

#include <array>

#include "binding/generated/charging_management_core_proxy.h"
#include "model/resource_types.h"
#include "someip/resource.h"

/// The fifteen resources of ChargingManagementCore, one row each.
namespace trov::chargingManagementCoreListener {

using Proxy = ylt::services::chargingmanagementcore::proxy::ChargingManagementCoreProxy;
using enums::SOMEIP_RESOURCE_TYPE;

// clang-format off
using ChargingPlugs                  = someip::Resource<SOMEIP_RESOURCE_TYPE::ChargingPlugs,                  &Proxy::chargingPlugs,                   2>;
using ValueControls                  = someip::Resource<SOMEIP_RESOURCE_TYPE::ValueControls,                  &Proxy::valueControls,                  11>;
using SwitchControls                 = someip::Resource<SOMEIP_RESOURCE_TYPE::SwitchControls,                 &Proxy::switchControls,                  9>;
using Views                          = someip::Resource<SOMEIP_RESOURCE_TYPE::Views,                          &Proxy::views,                           1>;
using NotificationMarkers            = someip::Resource<SOMEIP_RESOURCE_TYPE::NotificationMarkers,            &Proxy::notificationMarkers,             3>;
using OruUpdateApprovals             = someip::Resource<SOMEIP_RESOURCE_TYPE::OruUpdateApprovals,             &Proxy::oruUpdateApprovals,              1>;
using Notifications                  = someip::Resource<SOMEIP_RESOURCE_TYPE::Notifications,                  &Proxy::notifications,                   6>;
using FactoryResetData               = someip::Resource<SOMEIP_RESOURCE_TYPE::FactoryResetData,               &Proxy::resetToFactoryData,              1>;
using ChargingProcessInformation     = someip::Resource<SOMEIP_RESOURCE_TYPE::chargingProcessInformation,     &Proxy::chargingProcessInformation,      9>;
using ValueIndications               = someip::Resource<SOMEIP_RESOURCE_TYPE::valueIndications,               &Proxy::valueIndications,                8>;
using PastErrorInformation           = someip::Resource<SOMEIP_RESOURCE_TYPE::pastErrorInformation,           &Proxy::pastErrorInformation,            3>;
using BatteryCareModes               = someip::Resource<SOMEIP_RESOURCE_TYPE::BatteryCareModes,               &Proxy::batteryCareModes,                1>;
using BidirectionalChargingModes     = someip::Resource<SOMEIP_RESOURCE_TYPE::BidirectionalChargingModes,     &Proxy::bidirectionalChargingModes,      1>;
using BatteryPreconditionings        = someip::Resource<SOMEIP_RESOURCE_TYPE::BatteryPreconditionings,        &Proxy::batteryPreconditionings,         1>;
using BatteryPreconditioningEnergies = someip::Resource<SOMEIP_RESOURCE_TYPE::BatteryPreconditioningEnergies, &Proxy::batteryPreconditioningEnergies,  1>;
// clang-format on

/// In the order of the variants' alternatives.
using Resources =
    someip::ResourceList<ChargingPlugs, ValueControls, SwitchControls, Views, NotificationMarkers, OruUpdateApprovals, Notifications,
                         FactoryResetData, ChargingProcessInformation, ValueIndications, PastErrorInformation, BatteryCareModes,
                         BidirectionalChargingModes, BatteryPreconditionings, BatteryPreconditioningEnergies>;

using SettableResources = someip::ResourceList<PastErrorInformation, SwitchControls, ValueControls, Views, FactoryResetData>;

/// In which the gets are sent and their answers taken.
inline constexpr std::array kGetOrder{SOMEIP_RESOURCE_TYPE::ChargingPlugs,
                                      SOMEIP_RESOURCE_TYPE::chargingProcessInformation,
                                      SOMEIP_RESOURCE_TYPE::NotificationMarkers,
                                      SOMEIP_RESOURCE_TYPE::Notifications,
                                      SOMEIP_RESOURCE_TYPE::OruUpdateApprovals,
                                      SOMEIP_RESOURCE_TYPE::pastErrorInformation,
                                      SOMEIP_RESOURCE_TYPE::SwitchControls,
                                      SOMEIP_RESOURCE_TYPE::valueIndications,
                                      SOMEIP_RESOURCE_TYPE::Views,
                                      SOMEIP_RESOURCE_TYPE::FactoryResetData,
                                      SOMEIP_RESOURCE_TYPE::ValueControls,
                                      SOMEIP_RESOURCE_TYPE::BidirectionalChargingModes,
                                      SOMEIP_RESOURCE_TYPE::BatteryCareModes,
                                      SOMEIP_RESOURCE_TYPE::BatteryPreconditionings,
                                      SOMEIP_RESOURCE_TYPE::BatteryPreconditioningEnergies};

}  // namespace trov::chargingManagementCoreListener
