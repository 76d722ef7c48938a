#include <gtest/gtest.h>

#include <fstream>
#include <memory>
#include <nlohmann/json.hpp>
#include <string>
#include <string_view>

#include "ara/rest/serialize/json_writer.h"
#include "rest/generated/charging_management_core/charging_management_core.h"
#include "rest/generated/charging_management_core/switch_controls.h"
#include "rest/generated/charging_management_core/views.h"
#include "rest/generated/factory_reset/factory_reset.h"
#include "rest/generated/factory_reset/resets.h"

namespace {

using Json = nlohmann::ordered_json;  // the order of keys is part of the document
using zuva::server::charging_management_core::ChargingManagementCore;
using zuva::server::charging_management_core::SwitchControls;
using zuva::server::charging_management_core::Views;
using zuva::server::factory_reset::FactoryReset;
using zuva::server::factory_reset::Resets;

Json Model(const std::string& file) {
  return Json::parse(std::ifstream{CMC_SOURCE_DIR "/rest/model/" + file});
}

std::string Text(const Json& json) {
  return json.dump();
}

std::string SpecificationOf(const zuva::BaseXObject& object) {
  return Text(Json::parse(ara::rest::serialize::ToText(*object.GetSpec())));
}

TEST(SpecificationDocuments, AServiceShowsItsModelWordForWord) {
  EXPECT_EQ(SpecificationOf(ChargingManagementCore{}), Text(Model("charging_management_core.json")));
  EXPECT_EQ(SpecificationOf(FactoryReset{}), Text(Model("factory_reset.json")));
}

TEST(SpecificationDocuments, AResourceShowsItsOwnPartUnderItsName) {
  const auto expected = [](const std::string& file, std::string_view name) {
    const std::string key{name};
    return Text(Json{{key, Model(file).at("resources").at(key)}});
  };
  EXPECT_EQ(SpecificationOf(SwitchControls{}), expected("charging_management_core.json", "switchControls"));
  EXPECT_EQ(SpecificationOf(Views{}), expected("charging_management_core.json", "views"));
  EXPECT_EQ(SpecificationOf(Resets{}), expected("factory_reset.json", "resets"));
}

}  // namespace
