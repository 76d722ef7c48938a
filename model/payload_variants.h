#pragma once

#include <boost/mpl/at.hpp>
#include <boost/variant.hpp>
#include <cstddef>
#include <memory>
#include <type_traits>
#include <vector>

#include "model/records_charging_management_core.h"
#include "model/records_route_based_energy_contents.h"
#include "model/resource_types.h"

// What a set carries to the wrapper, and what a get and the cached samples bring back. The order of the alternatives is binding.
namespace trov::types {

namespace detail {

namespace cmc = ylt::services::chargingmanagementcore::datatypes;
namespace rbec = ylt::services::routebasedenergycontents::datatypes;

}  // namespace detail

/// The samples of an event: one shared pointer per notification, each a whole array of records.
template <class Record>
using Samples = std::vector<std::shared_ptr<const std::vector<Record>>>;

/// One element of a set request. The index is the number of the resource, 0 to 10.
using SetPayloadVariant = boost::variant<detail::cmc::DT_chargingPlugs_struct,               // 0
                                         detail::cmc::DT_valueControls_struct,               // 1
                                         detail::cmc::DT_switchControls_struct,              // 2
                                         detail::cmc::DT_views_struct,                       // 3
                                         detail::cmc::DT_notificationMarkers_struct,         // 4
                                         detail::cmc::DT_oruUpdateApprovals_struct,          // 5
                                         detail::cmc::DT_notifications_struct,               // 6
                                         detail::cmc::DT_resetToFactoryData_struct,          // 7
                                         detail::cmc::DT_chargingProcessInformation_struct,  // 8
                                         detail::cmc::DT_valueIndications_struct,            // 9
                                         detail::cmc::DT_pastErrorInformation_struct>;       // 10

namespace detail {

/// The fifteen resources of a get and of the cached samples. The index is the resource's number up to 11; behind it the
/// resources 14, 15 and 16 stand at 12, 13 and 14.
template <template <class> class Shape>
using PerResource = boost::variant<Shape<cmc::DT_chargingPlugs_struct>,                    // 0
                                   Shape<cmc::DT_valueControls_struct>,                    // 1
                                   Shape<cmc::DT_switchControls_struct>,                   // 2
                                   Shape<cmc::DT_views_struct>,                            // 3
                                   Shape<cmc::DT_notificationMarkers_struct>,              // 4
                                   Shape<cmc::DT_oruUpdateApprovals_struct>,               // 5
                                   Shape<cmc::DT_notifications_struct>,                    // 6
                                   Shape<cmc::DT_resetToFactoryData_struct>,               // 7
                                   Shape<cmc::DT_chargingProcessInformation_struct>,       // 8
                                   Shape<cmc::DT_valueIndications_struct>,                 // 9
                                   Shape<cmc::DT_pastErrorInformation_struct>,             // 10
                                   Shape<cmc::DT_batteryCareModes_struct>,                 // 11
                                   Shape<cmc::DT_bidirectionalChargingModes_struct>,       // 12, resource 14
                                   Shape<cmc::DT_batteryPreconditionings_struct>,          // 13, resource 15
                                   Shape<cmc::DT_batteryPreconditioningEnergies_struct>>;  // 14, resource 16

template <class Record>
using Records = std::vector<Record>;

}  // namespace detail

using GetResultVariant = detail::PerResource<detail::Records>;
using CachedSamplesVariant = detail::PerResource<Samples>;

/// The order of the second is the reverse of the first's, on purpose.
using RbecGetResultVariant =
    boost::variant<std::vector<detail::rbec::DT_rwmStatus_struct>, std::vector<detail::rbec::DT_targetSocChargings_struct>>;
using RbecCachedSamplesVariant =
    boost::variant<Samples<detail::rbec::DT_targetSocChargings_struct>, Samples<detail::rbec::DT_rwmStatus_struct>>;

/// Whether the alternative at `index` of `Variant` is `Alternative`.
template <class Variant, std::size_t index, class Alternative>
inline constexpr bool kHoldsAt =
    std::is_same_v<typename boost::mpl::at_c<typename Variant::types, static_cast<long>(index)>::type, Alternative>;

/// Whether a set, a get and the samples of `resource` stand at the index that its number says.
template <enums::SOMEIP_RESOURCE_TYPE resource, class Record>
inline constexpr bool kNumberIsIndex = kHoldsAt<SetPayloadVariant, static_cast<std::size_t>(resource), Record>&&
    kHoldsAt<GetResultVariant, static_cast<std::size_t>(resource), std::vector<Record>>&&
        kHoldsAt<CachedSamplesVariant, static_cast<std::size_t>(resource), Samples<Record>>;

static_assert(kNumberIsIndex<enums::SOMEIP_RESOURCE_TYPE::ChargingPlugs, detail::cmc::DT_chargingPlugs_struct>);
static_assert(kNumberIsIndex<enums::SOMEIP_RESOURCE_TYPE::ValueControls, detail::cmc::DT_valueControls_struct>);
static_assert(kNumberIsIndex<enums::SOMEIP_RESOURCE_TYPE::SwitchControls, detail::cmc::DT_switchControls_struct>);
static_assert(kNumberIsIndex<enums::SOMEIP_RESOURCE_TYPE::Views, detail::cmc::DT_views_struct>);
static_assert(kNumberIsIndex<enums::SOMEIP_RESOURCE_TYPE::NotificationMarkers, detail::cmc::DT_notificationMarkers_struct>);
static_assert(kNumberIsIndex<enums::SOMEIP_RESOURCE_TYPE::OruUpdateApprovals, detail::cmc::DT_oruUpdateApprovals_struct>);
static_assert(kNumberIsIndex<enums::SOMEIP_RESOURCE_TYPE::Notifications, detail::cmc::DT_notifications_struct>);
static_assert(kNumberIsIndex<enums::SOMEIP_RESOURCE_TYPE::FactoryResetData, detail::cmc::DT_resetToFactoryData_struct>);
static_assert(kNumberIsIndex<enums::SOMEIP_RESOURCE_TYPE::chargingProcessInformation, detail::cmc::DT_chargingProcessInformation_struct>);
static_assert(kNumberIsIndex<enums::SOMEIP_RESOURCE_TYPE::valueIndications, detail::cmc::DT_valueIndications_struct>);
static_assert(kNumberIsIndex<enums::SOMEIP_RESOURCE_TYPE::pastErrorInformation, detail::cmc::DT_pastErrorInformation_struct>);

}  // namespace trov::types
