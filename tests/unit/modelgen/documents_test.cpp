#include <gtest/gtest.h>

#include <fstream>
#include <nlohmann/json.hpp>
#include <string>

#include "ara/rest/serialize/json_writer.h"
#include "rest/generated/charging_management_core/charging_management_core.h"
#include "rest/generated/charging_management_core/views.h"
#include "rest/generated/factory_reset/factory_reset.h"

namespace {

using Json = nlohmann::ordered_json;  // the order of keys is part of the document

Json Model(const std::string& file) {
  return Json::parse(std::ifstream{CMC_SOURCE_DIR "/rest/model/" + file});
}

std::string SpecificationOf(const zuva::BaseXObject& object) {
  return Json::parse(ara::rest::serialize::ToText(*object.GetSpec())).dump();
}

TEST(SpecificationDocuments, ShowTheModelOfAServiceAndOfAResourceWordForWord) {
  const Json model = Model("charging_management_core.json");
  EXPECT_EQ(SpecificationOf(zuva::server::charging_management_core::ChargingManagementCore{}), model.dump());
  EXPECT_EQ(SpecificationOf(zuva::server::charging_management_core::Views{}), (Json{{"views", model["resources"]["views"]}}.dump()));
  EXPECT_EQ(SpecificationOf(zuva::server::factory_reset::FactoryReset{}), Model("factory_reset.json").dump());
}

}  // namespace
