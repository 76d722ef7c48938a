#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <stdexcept>
#include <string>

#include "ara/log/testing/capture.h"
#include "tests/support/wait_for.h"
#include "tests/unit/rest/application.h"

namespace rest_test {
namespace {

using testing::ElementsAre;

TEST(ServerCore, StartsInOrderAndPublishesItsServices) {
  Application application;
  const ara::log::testing::Capture log;
  application.StartServer();
  EXPECT_THAT(log.Lines(), ElementsAre("Starting the server population...", "Registered preupdate callbacks...",
                                       "Removing zuva server service ResetToFactoryData...", "Starting ZuVa server...",
                                       "Starting SomeIP listeners...", "Completed start of SomeIP listeners..."));
  EXPECT_EQ(application.Get("/ChargingManagementCore")["versions"], nlohmann::ordered_json::array({"0.10.1"}));
  EXPECT_EQ(application.Get("/FactoryReset")["versions"], nlohmann::ordered_json::array({"1.3.0"}));
  EXPECT_EQ(application.Get("/")["services"].size(), 2U);
  EXPECT_EQ(application.Get("/ChargingManagementCore")["resources"].size(), 18U);
  EXPECT_EQ(application.Status("/ChargingManagementCore/resetToFactoryData"), 404);
  EXPECT_EQ(application.Server().GetChargingManagementCoreResetToFactoryData()->GetName(), "resetToFactoryData") << "alive, but unreached";
  EXPECT_TRUE(application.StopServer());
  EXPECT_THAT(TheOutside().Lines(),
              ElementsAre("serve", "listeners start", "stop", testing::StartsWith("withdraw "), testing::StartsWith("withdraw ")));
}

TEST(ServerCore, ReportsAFailedStartByLogAlone) {
  struct Broken : RecordingMediator {
    void TellSomeIpToStartListener() override { throw std::runtime_error{"no listener"}; }
  };
  Application application;
  application.SetCommunicationsManager(std::make_shared<Broken>());
  const ara::log::testing::Capture log;
  application.StartServer();
  EXPECT_EQ(log.Lines().back(), "Failed to start server:no listener");
  EXPECT_EQ(application.Status("/ChargingManagementCore/views"), 200) << "what was reached stays";
}

TEST(ServerCoreDeathTest, NullServerIsTheEndOfTheProcess) {
  testing::FLAGS_gtest_death_test_style = "threadsafe";
  const ara::log::testing::Capture log;
  Application application{kWrongConfiguration};
  EXPECT_THAT(log.Lines(), ElementsAre("Failed to start server: Make for ZuVa threw exception"));
  EXPECT_DEATH(application.StartServer(), "terminate");
}

TEST(Registry, HearsOfChangesInTheirOrder) {
  Application application;
  application.Update_Registry(true);
  application.Update_Registry(false);
  EXPECT_TRUE(test_support::WaitFor([] { return TheOutside().Lines().size() == 4; }));
  const auto lines = TheOutside().Lines();
  const auto place = [&](const char* line) { return std::find(lines.begin(), lines.end(), line) - lines.begin(); };
  EXPECT_LT(place("announce ChargingManagementCore at http://[::1]/"), place("withdraw ChargingManagementCore"));
  EXPECT_LT(place("announce FactoryReset at http://[::1]/"), place("withdraw FactoryReset"));
}

}  // namespace
}  // namespace rest_test
