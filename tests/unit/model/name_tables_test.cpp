#include "model/name_tables_charging_management_core.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <string>
#include <utility>
#include <vector>

#include "model/name_tables_route_based_energy_contents.h"

namespace {

using namespace ylt::services;

using Row = std::pair<std::uint32_t, std::string>;

/// FNV-1a, 64 bits, of a line "number=word" for each row, in the order of the numbers.
std::uint64_t Digest(std::vector<Row> rows) {
  std::sort(rows.begin(), rows.end());
  std::uint64_t digest = 0xCBF29CE484222325;
  for (const auto& [number, word] : rows) {
    for (const unsigned char byte : std::to_string(number) + '=' + word + '\n') digest = (digest ^ byte) * 0x100000001B3;
  }
  return digest;
}

struct Table {
  const char* name;
  std::vector<Row> direct, inverse;
  std::uint64_t digest;
};

template <class Direct, class Inverse>
Table Make(const char* name, const Direct& direct, const Inverse& inverse, std::uint64_t digest) {
  Table table{name, {}, {}, digest};
  for (const auto& [value, word] : direct) table.direct.emplace_back(static_cast<std::uint32_t>(value), word);
  for (const auto& [word, value] : inverse) table.inverse.emplace_back(static_cast<std::uint32_t>(value), word);
  return table;
}

#define TABLE(space, service, name, digest) \
  Make(#name, space::mapDT_##service##_##name##_Direct, space::mapDT_##service##_##name##_Inv, digest)
#define CMC(name, digest) TABLE(chargingmanagementcore, ChargingManagementCore, name, digest)
#define RBEC(name, digest) TABLE(routebasedenergycontents, RouteBasedEnergyContents, name, digest)

// clang-format off
std::vector<Table> Tables() {
  return {
      CMC(batteryCareModes_notification, 0x8E03B3BFA417E01E),                    CMC(batteryCareModes_popup, 0x021DBA137C603876),
      CMC(batteryCareModes_type, 0x1B02A73DFB100285),                            CMC(batteryPreconditioningEnergies_type, 0x2B35D111BD15D9A0),
      CMC(batteryPreconditionings_preconditioningState, 0xD37EA2DE73172B85),     CMC(batteryPreconditionings_type, 0x3F5EFB951024B69B),
      CMC(bidirectionalChargingModes_chargingMode, 0xAA5907C8BCF226D7),          CMC(bidirectionalChargingModes_information, 0xED6AEFB631F9D64A),
      CMC(bidirectionalChargingModes_notification, 0xC1786DD1FD07E139),          CMC(bidirectionalChargingModes_type, 0x160B66504386EE19),
      CMC(chargeModes_chargeModesType, 0xCE9B11CDEB419E45),                      CMC(chargeModes_state, 0x339EA3DCC9C4C34B),
      CMC(chargeModes_stateInformation, 0xC1B971861104F745),                     CMC(chargingPlugs_infrastructureState, 0x838CF94A12F441B4),
      CMC(chargingPlugs_plugConnectionState, 0xB424D90FC41E7928),                CMC(chargingPlugs_plugType, 0x6438A501D4EB0FB5),
      CMC(chargingPlugs_type, 0xC35285E623C25E85),                               CMC(chargingProcessInformation_activeTargetSoc, 0xFF2AEF0CDBA8BA91),
      CMC(chargingProcessInformation_chargeMode, 0x2173E39D96C5649D),            CMC(chargingProcessInformation_chargeRateCuteness, 0x7F3C4231A0DD3079),
      CMC(chargingProcessInformation_chargeTimeDisplay, 0x974133C08C208A56),     CMC(chargingProcessInformation_chargeType, 0xDAF0A83A53591AA7),
      CMC(chargingProcessInformation_chargingScenario, 0xF7009A9A80009356),      CMC(chargingProcessInformation_currentChargeState, 0x7F9F096C779C6509),
      CMC(chargingProcessInformation_profileChargeReason, 0xA56C989BE60086A6),   CMC(chargingProcessInformation_type, 0x9612119D042B0E9E),
      CMC(immediateActions_type, 0x2A9FFEDA75CD03ED),                            CMC(immediateChargingOptions_type, 0x3C6052EB02910C21),
      CMC(notificationMarkers_type, 0x55AF9F832A4DF376),                         CMC(notifications_additionalInformation, 0x5532B05FEC18D897),
      CMC(notifications_flapSide, 0x536FA310112C50F4),                           CMC(notifications_type, 0x18ACA1613AA2A203),
      CMC(notifications_value, 0x81DD78FFC29AFE4B),                              CMC(oruUpdateApprovals_type, 0x7D1CF2B6DD4F9BF6),
      CMC(pastErrorInformation_additionalInformation, 0x5532B05FEC18D897),       CMC(pastErrorInformation_type, 0x6FFB5529AA591B13),
      CMC(pastErrorInformation_value, 0x81DD78FFC29AFE4B),                       CMC(resetToFactoryData_resetToFactoryData, 0x1AAF11E55762774B),
      CMC(statistics_confirmendByUser, 0xDD0B1B6E1D0AB9F6),                      CMC(statistics_notification, 0x5686EE436C33132D),
      CMC(statistics_statisicsType, 0xF7A85C2EECC8B55C),                         CMC(statistics_unit, 0x6430A116BE4D2355),
      CMC(switchControls_restrictionReason, 0x91B7EF810D5673CB),                 CMC(switchControls_switchValue, 0x73E4B09C15939E38),
      CMC(switchControls_switchValueConfiguration, 0x73E4B09C15939E38),          CMC(switchControls_type, 0x33983343C7BABEE1),
      CMC(valueControls_restrictionReason, 0x91B7EF810D5673CB),                  CMC(valueControls_specialState, 0xCC25FD364EF2F1DB),
      CMC(valueControls_specialStateConfiguration, 0xCC25FD364EF2F1DB),          CMC(valueControls_type, 0x7D30F1D342AE3D28),
      CMC(valueControls_unitDistance, 0xD8FB420DF9623FFE),                       CMC(valueControls_unitPercent, 0xCB76A9C4178CDD7F),
      CMC(valueControls_unitTime, 0x046F11A2240F843C),                           CMC(valueIndications_restrictionReason, 0x91B7EF810D5673CB),
      CMC(valueIndications_type, 0x29ABF6F3900791F1),                            CMC(valueIndications_unitEnergy, 0x21823254BB756686),
      CMC(valueIndications_unitPercent, 0xCB76A9C4178CDD7F),                     CMC(valueIndications_unitPower, 0x75DE3D4184D7A0AE),
      CMC(valueIndications_unitSpeed, 0x2C56A7F49AC703CB),                       CMC(valueIndications_unitTemperature, 0x9C4979FAB96C7FBA),
      CMC(valueIndications_unitTime, 0x046F11A2240F843C),                        CMC(views_content, 0xC6EDD57A6F1A5217),
      CMC(views_type, 0x60E56123C69DF7AA),                                       CMC(views_visibility, 0x43C43CBA77E6FE01),
      RBEC(destinations_identifier, 0x743063750137FE79),                         RBEC(destinations_type, 0xCC4D74FFC947819C),
      RBEC(rangeOnRouteValues_type, 0x28AF9BF14B21A2A7),                         RBEC(routeBasedResidualEnergyValues_type, 0xC723ACC96DCEDBEF),
      RBEC(rwmStatus_routeGuidanceState, 0xEB6CA3B7832B616D),                    RBEC(targetSocChargings_type, 0x8C82AC74FC4D8AB9),
  };
}
// clang-format on

TEST(NameTables, HoldTheInterfacesRowsInBothDirections) {
  const auto tables = Tables();
  EXPECT_EQ(tables.size(), 70U);
  std::size_t rows = 0;
  for (const auto& table : tables) {
    rows += table.direct.size();
    EXPECT_EQ(Digest(table.direct), table.digest) << table.name;
    EXPECT_EQ(Digest(table.inverse), table.digest) << table.name;
  }
  EXPECT_EQ(rows, 540U);
}

}  // namespace
