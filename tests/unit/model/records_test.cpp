#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>
#include <cstdint>
#include <type_traits>
#include <vector>

#include "model/records_charging_management_core.h"
#include "model/records_route_based_energy_contents.h"

namespace {

namespace cmc = ylt::services::chargingmanagementcore::datatypes;
namespace rbec = ylt::services::routebasedenergycontents::datatypes;
using xr::com::someip::serialization::Structure_tag;
using xr::com::someip::serialization::Wire_type;

/// The one wire type that a member's type may have.
template <class T>
constexpr Wire_type WireTypeOf() {
  if constexpr (std::is_same_v<T, bool> || std::is_same_v<T, std::uint8_t>) return Wire_type::one_byte;
  if constexpr (std::is_same_v<T, std::uint64_t>) return Wire_type::eight_bytes;
  if constexpr (std::is_same_v<T, std::uint32_t> || std::is_same_v<T, float> || std::is_enum_v<T>) return Wire_type::four_bytes;
  return Wire_type::four_byte_length_field;
}

template <class Record>
class Records : public testing::Test {};

using AllRecords = testing::Types<
    cmc::DT_views_struct, cmc::DT_notifications_struct, cmc::DT_notificationMarkers_struct, cmc::DT_oruUpdateApprovals_struct,
    cmc::DT_pastErrorInformation_struct, cmc::DT_resetToFactoryData_struct, cmc::DT_chargingPlugs_struct, cmc::DT_switchControls_struct,
    cmc::DT_valueControls_struct, cmc::DT_valueIndications_struct, cmc::DT_batteryCareModes_struct, cmc::DT_batteryPreconditionings_struct,
    cmc::DT_batteryPreconditioningEnergies_struct, cmc::DT_bidirectionalChargingModes_struct, cmc::DT_chargingProcessInformation_struct,
    cmc::DT_statistics_struct, cmc::DT_chargeModes_struct, cmc::DT_immediateActions_struct, cmc::DT_immediateChargingOptions_struct,
    rbec::DT_targetSocChargings_struct, rbec::DT_rwmStatus_struct, rbec::DT_destinations_struct, rbec::DT_rangeOnRouteValues_struct,
    rbec::DT_routeBasedResidualEnergyValues_struct>;
TYPED_TEST_SUITE(Records, AllRecords);

TYPED_TEST(Records, VisitGivesEachMemberWithItsTagInTheOrderOfTheTagList) {
  TypeParam record;
  const TypeParam& constant = record;
  std::vector<Structure_tag> visited;
  std::vector<Structure_tag> visitedConstant;

  record.visit([&visited](auto& member, Structure_tag tag) {
    EXPECT_FALSE(member.has_value());
    EXPECT_EQ(tag.wire_type(), WireTypeOf<typename std::remove_reference_t<decltype(member)>::value_type>());
    visited.push_back(tag);
  });
  constant.visit([&visitedConstant](const auto&, Structure_tag tag) { visitedConstant.push_back(tag); });

  EXPECT_THAT(TypeParam::get_tlv_tags(), testing::ElementsAreArray(visited));
  EXPECT_EQ(visited, visitedConstant);
}

// The wire order of a tag; its top bit is reserved and ignored on reading.
static_assert(Structure_tag{Wire_type::four_byte_length_field, 0x123}.bytes() == std::array<std::uint8_t, 2>{0x71, 0x23});
static_assert(Structure_tag{{{0xAF, 0xFF}}}.wire_type() == Wire_type::four_bytes && Structure_tag{{{0xAF, 0xFF}}}.data_id() == 0xFFF);

TEST(RecordValues, AreEqualOnlyIfTheSameMembersArePresent) {
  cmc::DT_notificationMarkers_struct marker;
  marker.isToBeNotified = true;
  auto other = marker;
  EXPECT_EQ(marker, other);

  other.notificationSocValue = cmc::valueControlsReference{};
  EXPECT_NE(marker, other);
}

}  // namespace
