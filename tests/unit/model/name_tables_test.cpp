#include "model/name_tables_charging_management_core.h"

#include <gtest/gtest.h>

#include <fstream>
#include <nlohmann/json.hpp>
#include <string>

#include "model/name_tables_route_based_energy_contents.h"

namespace {

using namespace ylt::services::chargingmanagementcore;
using datatypes::DT_ChargingManagementCore_switchControls_type;
using datatypes::DT_ChargingManagementCore_valueControls_type;

nlohmann::json RowsOf(const std::string& file, const std::string& name) {
  const auto enumerations = nlohmann::json::parse(std::ifstream{CMC_SOURCE_DIR "/model/" + file}).at("enumerations");
  const auto& rows = enumerations.at(name);
  return rows.is_object() ? enumerations.at(rows.at("rowsOf").get<std::string>()) : rows;
}

/// Every row of the model stands in both tables, and nothing else does.
template <class Enumeration>
void ExpectTables(const std::string& file, const std::string& name) {
  const auto rows = RowsOf(file, name);
  const auto& direct = trov::Names<Enumeration>::Direct();
  const auto& inverse = trov::Names<Enumeration>::Inverse();
  EXPECT_EQ(direct.size(), rows.size());
  EXPECT_EQ(inverse.size(), rows.size());
  for (const auto& row : rows) {
    const auto value = static_cast<Enumeration>(row[0].get<std::uint32_t>());
    const auto word = row[1].get<std::string>();
    EXPECT_EQ(direct.at(value), word) << name;
    EXPECT_EQ(inverse.at(word), value) << name;
  }
}

TEST(NameTables, HoldTheRowsOfTheModelInBothDirections) {
  const std::string file = "enumerations_charging_management_core.json";
  ExpectTables<datatypes::DT_ChargingManagementCore_views_type>(file, "views_type");
  ExpectTables<DT_ChargingManagementCore_switchControls_type>(file, "switchControls_type");
  ExpectTables<DT_ChargingManagementCore_valueControls_type>(file, "valueControls_type");
  ExpectTables<datatypes::DT_ChargingManagementCore_statistics_confirmendByUser>(file, "statistics_confirmendByUser");
}

TEST(NameTables, SharedRowsMakeTablesOfTheirOwnType) {
  const std::string file = "enumerations_charging_management_core.json";
  ExpectTables<datatypes::DT_ChargingManagementCore_pastErrorInformation_value>(file, "pastErrorInformation_value");
  ExpectTables<datatypes::DT_ChargingManagementCore_valueControls_restrictionReason>(file, "valueControls_restrictionReason");
}

TEST(NameTables, TheSecondServiceHasItsOwn) {
  using ylt::services::routebasedenergycontents::datatypes::DT_RouteBasedEnergyContents_rwmStatus_routeGuidanceState;
  ExpectTables<DT_RouteBasedEnergyContents_rwmStatus_routeGuidanceState>("enumerations_route_based_energy_contents.json",
                                                                         "rwmStatus_routeGuidanceState");
}

TEST(NameTables, GapsInTheNumberingAreUnknown) {
  for (const unsigned number : {4U, 9U, 19U, 29U, 31U, 45U}) {
    EXPECT_FALSE(mapDT_ChargingManagementCore_switchControls_type_Direct.contains(
        static_cast<DT_ChargingManagementCore_switchControls_type>(number)))
        << number;
  }
  EXPECT_FALSE(mapDT_ChargingManagementCore_bidirectionalChargingModes_chargingMode_Direct.contains({}));
}

TEST(NameTables, OneWordHasAnotherNumberInAnotherTable) {
  EXPECT_EQ(static_cast<unsigned>(mapDT_ChargingManagementCore_switchControls_switchValue_Inv.at("off")), 2U);
  EXPECT_EQ(static_cast<unsigned>(mapDT_ChargingManagementCore_valueControls_specialState_Inv.at("off")), 0U);
}

}  // namespace
