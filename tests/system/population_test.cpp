#include "tests/system/rows.h"
#include "tests/system/system_test.h"

#include <set>
#include <string>

namespace system_test {
namespace {

using nlohmann::ordered_json;

class Populated : public SystemTest {
 protected:
  ordered_json Get(const std::string& target) { return ordered_json::parse(Http().Get(target).body); }
  /// What an element without values has, in order: its identity, its type and the objects that it embeds.
  void ExpectElement(const ordered_json& element, const std::string& path, const std::string& name, const ordered_json& row) {
    const std::string id = element.value("id", "");
    const std::string type = row.is_string() ? row : row["type"];
    EXPECT_TRUE(ids_.insert(id).second) << type;
    ordered_json expected{{"id", id}, {"name", name}, {"uri", path + "/" + id}, {"type", type}};
    const auto embedded = row.is_string() ? ordered_json::object() : row["embedded"];
    for (const auto& [property, embeddedType] : embedded.items()) expected[property] = ElementOfType(embeddedType);
    EXPECT_EQ(element.dump(), expected.dump());
  }
  ordered_json ElementOfType(const std::string& type) {
    for (const char* resource : {"valueControls", "valueIndications", "switchControls"}) {
      for (const auto& element : Get(std::string{"/ChargingManagementCore/"} + resource + "?type=" + type)) return element;
    }
    return type + " is missing";
  }

  std::set<std::string> ids_;
};

TEST_F(Populated, EachResourceHasItsObjectsWithoutValuesInTheirOrder) {
  bridge_.Start();
  for (const auto& row : ReadRows("population")) {
    const auto path = "/ChargingManagementCore/" + std::string{row["resource"]};
    const auto elements = Get(path);
    ASSERT_EQ(elements.size(), row["elements"].size()) << path;
    for (std::size_t i = 0; i < elements.size(); ++i) ExpectElement(elements[i], path, row["name"], row["elements"][i]);
  }
  const auto resets = Get("/FactoryReset/resets");
  ASSERT_EQ(resets.size(), 1U);
  EXPECT_EQ(resets[0].size(), 4U);
  EXPECT_EQ(resets[0]["name"], "ChargingManagementCore");
  EXPECT_EQ(resets[0]["category"], "eCharging");
  EXPECT_EQ(Http().Get("/ChargingManagementCore/resetToFactoryData").status, 404U);
}

TEST_F(Populated, ResourcesKeepTheirIdentifiersOverAStartAndElementsDoNot) {
  const test_support::TempRoot otherRoot;
  test_support::Bridge other{otherRoot};
  bridge_.Start();
  other.Start();
  auto otherHttp = other.Http();
  const std::string path = "/ChargingManagementCore/notifications";
  EXPECT_EQ(Http().Get(path + "?identity").body, otherHttp.Get(path + "?identity").body);
  EXPECT_EQ(Http().Get("/ChargingManagementCore").body, otherHttp.Get("/ChargingManagementCore").body);
  EXPECT_NE(Http().Get(path).Json()[0]["id"], otherHttp.Get(path).Json()[0]["id"]);
  EXPECT_EQ(other.Stop(), test_support::ExitStatus{});
}

}  // namespace
}  // namespace system_test
