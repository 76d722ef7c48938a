#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <numeric>
#include <type_traits>
#include <vector>

#include "model/records_charging_management_core.h"
#include "model/records_route_based_energy_contents.h"

namespace {

namespace cmc = ylt::services::chargingmanagementcore::datatypes;
namespace rbec = ylt::services::routebasedenergycontents::datatypes;
using xr::com::someip::serialization::Structure_tag;
using xr::com::someip::serialization::Wire_type;

template <class Record>
std::vector<std::uint16_t> Ids() {
  std::vector<std::uint16_t> ids;
  for (const auto& tag : Record::get_tlv_tags()) ids.push_back(tag.data_id());
  return ids;
}

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

TEST(RecordTags, FollowTheMembersAndNotTheIds) {
  EXPECT_THAT(Ids<cmc::DT_notifications_struct>(), testing::ElementsAre(0, 1, 3, 2));
  EXPECT_THAT(Ids<cmc::DT_chargingPlugs_struct>(), testing::ElementsAre(0, 1, 2, 6, 3, 4, 5));
}

TEST(RecordTags, ChargingProcessInformationShufflesTwentySixIds) {
  auto ids = Ids<cmc::DT_chargingProcessInformation_struct>();
  std::vector<std::uint16_t> all(26);
  std::iota(all.begin(), all.end(), std::uint16_t{0});

  EXPECT_NE(ids, all);
  EXPECT_EQ(ids[2], 16);  // activeTargetSoc
  std::sort(ids.begin(), ids.end());
  EXPECT_EQ(ids, all);
}

TEST(RecordValues, AreEqualOnlyIfTheSameMembersArePresent) {
  cmc::DT_notificationMarkers_struct marker;
  marker.isToBeNotified = true;
  auto other = marker;
  EXPECT_EQ(marker, other);

  other.notificationSocValue = cmc::valueControlsReference{};
  EXPECT_NE(marker, other);
}

}  // namespace
