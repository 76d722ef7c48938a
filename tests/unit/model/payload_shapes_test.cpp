#include <gtest/gtest.h>

#include <string>
#include <tuple>
#include <type_traits>
#include <utility>
#include <vector>

#include "model/payload_variants.h"
#include "model/tuples.h"

namespace {

namespace cmc = ylt::services::chargingmanagementcore::datatypes;
namespace rbec = ylt::services::routebasedenergycontents::datatypes;
using namespace trov::types;

TEST(PayloadVariants, HaveTheirAlternativesInPlace) {
  // From resource 14 on the alternatives stand two places earlier than the resource's number.
  EXPECT_EQ(GetResultVariant{std::vector<cmc::DT_batteryCareModes_struct>{}}.which(), 11);
  EXPECT_EQ(GetResultVariant{std::vector<cmc::DT_bidirectionalChargingModes_struct>{}}.which(), 12);
  EXPECT_EQ(GetResultVariant{std::vector<cmc::DT_batteryPreconditioningEnergies_struct>{}}.which(), 14);
  EXPECT_EQ(CachedSamplesVariant{Samples<cmc::DT_batteryPreconditioningEnergies_struct>{}}.which(), 14);
  // The two of the second service are in opposite orders, on purpose.
  EXPECT_EQ(RbecGetResultVariant{std::vector<rbec::DT_targetSocChargings_struct>{}}.which(), 1);
  EXPECT_EQ(RbecCachedSamplesVariant{Samples<rbec::DT_targetSocChargings_struct>{}}.which(), 0);
}

/// Whether the tuples agree member for member: an enumeration became a word, a list of them words, everything else stays.
template <class Raw, class Mapped, std::size_t... I>
constexpr bool MapMemberForMember(std::index_sequence<I...>) {
  const auto agree = []<std::size_t index>(std::integral_constant<std::size_t, index>) {
    using From = typename std::remove_cvref_t<std::tuple_element_t<index, Raw>>::value_type;
    using To = typename std::tuple_element_t<index, Mapped>::value_type;
    if constexpr (std::is_enum_v<From>) return std::is_same_v<To, std::string>;
    if constexpr (!std::is_enum_v<From>) return std::is_same_v<To, From> || std::is_same_v<To, std::vector<std::string>>;
  };
  return (agree(std::integral_constant<std::size_t, I>{}) && ...);
}
template <class Raw, class Mapped, bool refers>
constexpr bool kMaps = MapMemberForMember<Raw, Mapped>(std::make_index_sequence<std::tuple_size_v<Raw>>{}) &&
                       std::is_reference_v<std::tuple_element_t<0, Raw>> == refers;

// Raw tuples refer into the record only where they are synchronous.
static_assert(kMaps<ValueControlsRawTuple, ValueControlsMappedTuple, true>);
static_assert(kMaps<BidirectionalChargingModesRawTuple, BidirectionalChargingModesMappedTuple, true>);
static_assert(kMaps<ValueIndicationsRawTuple, ValueIndicationsMappedTuple, false>);
static_assert(kMaps<ChargingProcessInformationRawTuple, ChargingProcessInformationMappedTuple, false>);

}  // namespace
