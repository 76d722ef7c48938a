#pragma once

#include <cstdint>
#include <string>
#include <tuple>
#include <vector>

#include "model/enumerations_charging_management_core.h"
#include "model/optional.h"

// The records that are too wide for an argument list cross between the sides as tuples: raw toward the mediator, mapped (words
// in place of enumeration values) from it. Members are taken by position, so their order is binding; it is not the record's.
namespace trov::types {

using Word = qe::com::optional<std::string>;
using Words = qe::com::optional<std::vector<std::string>>;

namespace detail {

namespace cmc = ylt::services::chargingmanagementcore::datatypes;

// A raw member of ValueControls and BidirectionalChargingModes refers into the received record, which outlives the call.
template <class T>
using Ref = const qe::com::optional<T>&;
template <class T>
using Opt = qe::com::optional<T>;

}  // namespace detail

using ValueControlsRawTuple =
    std::tuple<detail::Ref<detail::cmc::DT_ChargingManagementCore_valueControls_type>,               // 0 type
               detail::Ref<std::uint32_t>,                                                           // 1 currentValue
               detail::Ref<std::uint32_t>,                                                           // 2 minValue
               detail::Ref<std::uint32_t>,                                                           // 3 maxValue
               detail::Ref<detail::cmc::DT_ChargingManagementCore_valueControls_unitPercent>,        // 4 unitPercent
               detail::Ref<detail::cmc::DT_ChargingManagementCore_valueControls_unitDistance>,       // 5 unitDistance
               detail::Ref<detail::cmc::DT_ChargingManagementCore_valueControls_unitTime>,           // 6 unitTime
               detail::Ref<std::uint32_t>,                                                           // 7 resolution
               detail::Ref<detail::cmc::DT_ChargingManagementCore_valueControls_restrictionReason>,  // 8 restrictionReason
               detail::Ref<detail::cmc::DT_ChargingManagementCore_valueControls_specialState>,       // 9 specialState
               detail::Ref<std::vector<                                                              // 10 specialStateConfiguration
                   detail::cmc::DT_ChargingManagementCore_valueControls_specialStateConfiguration>>>;
using ValueControlsMappedTuple = std::tuple<Word,                        // 0 type
                                            detail::Opt<std::uint32_t>,  // 1 currentValue
                                            detail::Opt<std::uint32_t>,  // 2 minValue
                                            detail::Opt<std::uint32_t>,  // 3 maxValue
                                            Word,                        // 4 unitPercent
                                            Word,                        // 5 unitDistance
                                            Word,                        // 6 unitTime
                                            detail::Opt<std::uint32_t>,  // 7 resolution
                                            Word,                        // 8 restrictionReason
                                            Word,                        // 9 specialState
                                            Words>;                      // 10 specialStateConfiguration

using ValueIndicationsRawTuple =
    std::tuple<detail::Opt<detail::cmc::DT_ChargingManagementCore_valueIndications_type>,                // 0 type
               detail::Opt<float>,                                                                       // 1 currentValue
               detail::Opt<float>,                                                                       // 2 maxValue
               detail::Opt<float>,                                                                       // 3 minValue
               detail::Opt<std::string>,                                                                 // 4 currentTimeDateValue
               detail::Opt<detail::cmc::DT_ChargingManagementCore_valueIndications_unitPercent>,         // 5 unitPercent
               detail::Opt<detail::cmc::DT_ChargingManagementCore_valueIndications_unitTime>,            // 6 unitTime
               detail::Opt<detail::cmc::DT_ChargingManagementCore_valueIndications_unitSpeed>,           // 7 unitSpeed
               detail::Opt<detail::cmc::DT_ChargingManagementCore_valueIndications_unitPower>,           // 8 unitPower
               detail::Opt<detail::cmc::DT_ChargingManagementCore_valueIndications_unitEnergy>,          // 9 unitEnergy
               detail::Opt<detail::cmc::DT_ChargingManagementCore_valueIndications_restrictionReason>>;  // 10 restrictionReason
using ValueIndicationsMappedTuple = std::tuple<Word,                                                     // 0 type
                                               detail::Opt<float>,                                       // 1 currentValue
                                               detail::Opt<float>,                                       // 2 maxValue
                                               detail::Opt<float>,                                       // 3 minValue
                                               Word,                                                     // 4 currentTimeDateValue
                                               Word,                                                     // 5 unitPercent
                                               Word,                                                     // 6 unitTime
                                               Word,                                                     // 7 unitSpeed
                                               Word,                                                     // 8 unitPower
                                               Word,                                                     // 9 unitEnergy
                                               Word>;                                                    // 10 restrictionReason

using ChargingProcessInformationRawTuple =
    std::tuple<detail::Opt<detail::cmc::DT_ChargingManagementCore_chargingProcessInformation_type>,                 // 0 type
               detail::Opt<detail::cmc::DT_ChargingManagementCore_chargingProcessInformation_currentChargeState>,   // 1 currentChargeState
               detail::Opt<std::uint32_t>,                                                                          // 2 chargeBulkThreshold
               detail::Opt<detail::cmc::DT_ChargingManagementCore_chargingProcessInformation_chargeMode>,           // 3 chargeMode
               detail::Opt<detail::cmc::DT_ChargingManagementCore_chargingProcessInformation_profileChargeReason>,  // 4 profileChargeReason
               detail::Opt<detail::cmc::DT_ChargingManagementCore_chargingProcessInformation_chargeType>,           // 5 chargeType
               detail::Opt<detail::cmc::DT_ChargingManagementCore_chargingProcessInformation_chargingScenario>,     // 6 chargingScenario
               detail::Opt<detail::cmc::DT_ChargingManagementCore_chargingProcessInformation_activeTargetSoc>,      // 7 activeTargetSoc
               detail::Opt<detail::cmc::DT_ChargingManagementCore_chargingProcessInformation_chargeTimeDisplay>,    // 8 chargeTimeDisplay
               detail::Opt<std::string>,                                                                            // 9 evseid
               detail::Opt<detail::cmc::DT_ChargingManagementCore_chargingProcessInformation_chargeRateCuteness>>;  // 10 chargeRateCuteness
using ChargingProcessInformationMappedTuple = std::tuple<Word,                                                      // 0 type
                                                         Word,                                                      // 1 currentChargeState
                                                         detail::Opt<std::uint32_t>,                                // 2 chargeBulkThreshold
                                                         Word,                                                      // 3 chargeMode
                                                         Word,                                                      // 4 profileChargeReason
                                                         Word,                                                      // 5 chargeType
                                                         Word,                                                      // 6 chargingScenario
                                                         Word,                                                      // 7 activeTargetSoc
                                                         Word,                                                      // 8 chargeTimeDisplay
                                                         Word,                                                      // 9 evseid
                                                         Word>;                                                     // 10 chargeRateCuteness

using BidirectionalChargingModesRawTuple =
    std::tuple<detail::Ref<detail::cmc::DT_ChargingManagementCore_bidirectionalChargingModes_type>,          // 0 type
               detail::Ref<detail::cmc::DT_ChargingManagementCore_bidirectionalChargingModes_information>,   // 1 information
               detail::Ref<detail::cmc::DT_ChargingManagementCore_bidirectionalChargingModes_notification>,  // 2 notification
               detail::Ref<detail::cmc::DT_ChargingManagementCore_bidirectionalChargingModes_chargingMode>,  // 3 chargingMode
               detail::Ref<float>,                                                                           // 4 operatingHoursThreshold
               detail::Ref<float>,                                                                           // 5 numbersOfCyclesThreshold
               detail::Ref<float>,                                                                           // 6 amountOfEnergyThreshold
               detail::Ref<float>>;                                                                          // 7 quotaThreshold
using BidirectionalChargingModesMappedTuple = std::tuple<Word,                                               // 0 type
                                                         Word,                                               // 1 information
                                                         Word,                                               // 2 notification
                                                         Word,                                               // 3 chargingMode
                                                         detail::Opt<float>,                                 // 4 operatingHoursThreshold
                                                         detail::Opt<float>,                                 // 5 numbersOfCyclesThreshold
                                                         detail::Opt<float>,                                 // 6 amountOfEnergyThreshold
                                                         detail::Opt<float>>;                                // 7 quotaThreshold

static_assert(std::tuple_size_v<ValueControlsRawTuple> == std::tuple_size_v<ValueControlsMappedTuple>);
static_assert(std::tuple_size_v<ValueIndicationsRawTuple> == std::tuple_size_v<ValueIndicationsMappedTuple>);
static_assert(std::tuple_size_v<ChargingProcessInformationRawTuple> == std::tuple_size_v<ChargingProcessInformationMappedTuple>);
static_assert(std::tuple_size_v<BidirectionalChargingModesRawTuple> == std::tuple_size_v<BidirectionalChargingModesMappedTuple>);

}  // namespace trov::types
