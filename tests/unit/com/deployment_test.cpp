#include "xr/com/wire/deployment.h"

#include <gmock/gmock.h>

#include <fstream>

#include "tests/support/temp_root.h"

namespace xr::com::wire {
namespace {

using testing::HasSubstr;

constexpr const char* kCore = "ylt::services::chargingmanagementcore::ChargingManagementCore";

TEST(Deployment, DefaultFollowsTheRuleOfIds) {
  const auto deployment = default_deployment();
  ASSERT_EQ(deployment.services.size(), 2U);
  for (const auto& service : deployment.services) {
    for (std::size_t i = 0; i < service.fields.size(); ++i) {
      const auto& field = service.fields[i];
      EXPECT_EQ(field.event, 0x8010 + i) << field.name;
      EXPECT_EQ(field.eventgroup, 0x0010 + i) << field.name;
      EXPECT_EQ(field.get, 0x0010 + i) << field.name;
      EXPECT_EQ(field.set.value_or(0x0040 + i), 0x0040 + i) << field.name;
    }
  }
  EXPECT_EQ(deployment.find_service(kCore)->find_field("views"), &deployment.find_service(0x6310)->fields[18]);
}

TEST(Deployment, LaysAFileOverTheDefault) {
  const auto deployment =
      parse_deployment(R"({"unicast": "127.0.0.9", "serviceDiscovery": {"initialDelayMs": [0, 0], "subscribeTtlS": 16777215},
    "services": {"ylt::services::chargingmanagementcore::ChargingManagementCore": {"serviceId": "0x1A", "fields": {"views": {"reliable": true}}}}})");
  EXPECT_EQ(deployment.unicast.to_string(), "127.0.0.9");
  EXPECT_EQ(deployment.discovery.subscribe_ttl, 0xFFFFFFU);
  EXPECT_EQ(deployment.discovery.port, 30490);
  const auto* core = deployment.find_service(kCore);
  EXPECT_EQ(core->service_id, 0x1A);
  EXPECT_TRUE(core->find_field("views")->reliable);
  EXPECT_EQ(core->find_field("views")->event, 0x8022);
}

struct Wrong {
  const char* name;
  const char* text;
  const char* told;
};

class WrongDeployment : public testing::TestWithParam<Wrong> {};

TEST_P(WrongDeployment, IsRefusedWithPlaceAndReason) {
  try {
    parse_deployment(GetParam().text);
    FAIL() << "taken";
  } catch (const Deployment_error& e) {
    EXPECT_THAT(e.what(), HasSubstr(GetParam().told));
  }
}

#define CORE(fields) R"({"services": {"ylt::services::chargingmanagementcore::ChargingManagementCore": )" fields "}}"
INSTANTIATE_TEST_SUITE_P(
    Rows, WrongDeployment,
    testing::Values(Wrong{"NoJson", "{", "parse error"}, Wrong{"UnknownKey", R"({"unicats": "127.0.0.1"})", "unicats: unknown key"},
                    Wrong{"UnknownService", R"({"services": {"a": {}}})", "services.a: unknown key"},
                    Wrong{"NoSetter", CORE(R"({"fields": {"chargingPlugs": {"set": "0x0045"}}})"), "chargingPlugs.set: unknown key"},
                    Wrong{"RepeatedKey", R"({"unicast": "127.0.0.1", "unicast": "127.0.0.2"})", "unicast: repeated key"},
                    Wrong{"Address", R"({"unicast": "127.0.0.256"})", "unicast: must be an IPv4 address"},
                    Wrong{"NoGroup", R"({"serviceDiscovery": {"multicast": "127.0.0.1"}})", "multicast: must be a multicast address"},
                    Wrong{"PortTooBig", R"({"serviceDiscovery": {"port": 65536}})", "port: must be a whole number from 1 to 65535"},
                    Wrong{"DelaysSwapped", R"({"serviceDiscovery": {"initialDelayMs": [50, 10]}})", "initialDelayMs: must be"},
                    Wrong{"IdAsNumber", CORE(R"({"serviceId": 25360})"), "serviceId: must be a text"},
                    Wrong{"AnyInstance", CORE(R"({"instanceId": "0xffff"})"), "instanceId: must be an id from 0x0001 to 0xfffe"},
                    Wrong{"EventAsMethod", CORE(R"({"fields": {"views": {"event": "0x0022"}}})"), "views.event: must be an id from 0x8000"},
                    Wrong{"EventTwice", CORE(R"({"fields": {"views": {"event": "0x8010"}}})"), "event: is used twice"},
                    Wrong{"ServiceTwice", CORE(R"({"serviceId": "0x6311"})"), "serviceId: is used twice"}),
    [](const auto& row) { return row.param.name; });
#undef CORE

TEST(Deployment, AFileThatIsNotThereIsTheDefaultAndOneThatCannotBeReadAnError) {
  EXPECT_EQ(load_deployment("/nonexistent/someip_deployment.json").services.size(), 2U);
  EXPECT_THROW(load_deployment("/"), Deployment_error);
}

}  // namespace
}  // namespace xr::com::wire
