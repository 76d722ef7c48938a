#include "xr/com/runtime/component_singleton.h"

#include <gmock/gmock.h>

#include <cstdlib>
#include <stdexcept>

#include "client_fixture.h"
#include "xr/com/execution/static_thread_pool.h"

namespace com_test {
namespace {

using testing::AllOf;
using testing::ElementsAre;
using testing::HasSubstr;
using xr::com::runtime::Component_singleton;

struct Singleton : testing::Test {
  Singleton() { ::setenv("ARA_ROOT", root.Path().c_str(), 1); }

  std::string error_of_start() {
    try {
      const Component_singleton singleton{false, ""};
      return {};
    } catch (const std::runtime_error& e) {
      return e.what();
    }
  }

  ara::log::testing::Capture log;
  test_support::TempRoot root;
};

TEST_F(Singleton, AWrongFileIsOneErrorLineAndAThrow) {
  root.WriteDeployment(R"({"serviceDiscovery": {"prot": 1}})");
  const auto error = error_of_start();
  EXPECT_THAT(error, AllOf(HasSubstr(root.DeploymentPath().string()), HasSubstr("serviceDiscovery.prot: unknown key")));
  EXPECT_THAT(log.Lines(), ElementsAre(error));
  EXPECT_THROW(Component_singleton::get_service_finder(), std::logic_error);
}

TEST_F(Singleton, AnAddressThatIsNotThereIsToldToo) {
  auto deployment = root.DefaultDeployment();
  deployment["unicast"] = "192.0.2.1";
  root.WriteDeployment(deployment.dump());
  EXPECT_THAT(error_of_start(), HasSubstr("Cannot open the discovery socket"));
}

TEST_F(Singleton, RunsPostedWorkAtItsEndAndLeavesNothingBehind) {
  std::atomic<int> ran{0};
  for (int round = 0; round < 3; ++round) {
    const Component_singleton singleton{false, ""};
    EXPECT_THROW((Component_singleton{false, ""}), std::logic_error) << "one at a time";
    const auto find = Component_singleton::get_service_finder().start_find(kService, "*", [](const auto&) { return true; });
    const auto pool = Component_singleton::get_thread_pool_factory().pool();
    for (int i = 0; i < 100; ++i) pool->post([&] { ++ran; });
  }
  EXPECT_EQ(ran, 300);
  EXPECT_THROW(Component_singleton::get_thread_pool_factory(), std::logic_error);
}

}  // namespace
}  // namespace com_test
