#include "ara/log/testing/capture.h"
#include "someip/cmc/charging_management_core_proxy_wrapper.h"
#include "someip/rbec/route_based_energy_contents_proxy_wrapper.h"

#include "tests/support/temp_root.h"
#include "xr/com/runtime/component_singleton.h"

#include <gmock/gmock.h>

#include <cstdlib>
#include <memory>
#include <string>
#include <vector>

namespace trov {
namespace {

using ara::log::testing::Capture;
using chargingManagementCoreListener::ChargingManagementCoreProxyWrapper;
using routeBasedEnergyContents::RouteBasedEnergyContentsProxyWrapper;
using Lines = std::vector<std::string>;

/// What a wrapper logs that is asked to find its service where no runtime is.
template <class Wrapper>
Lines LinesOfAFindWithoutRuntime() {
  Wrapper wrapper;
  const Capture capture;
  EXPECT_FALSE(wrapper.StartFindService([](auto) {}));
  EXPECT_TRUE(wrapper.IsProxyNull());
  return capture.Lines();
}

/// What a wrapper logs about a resource that it does not serve, for each of its operations.
template <class Wrapper>
Lines LinesAboutUnserved(enums::SOMEIP_RESOURCE_TYPE resource) {
  Wrapper wrapper;
  const Capture capture;
  wrapper.Update(resource);
  wrapper.Subscribe(resource);
  wrapper.GetCachedSamples(resource);
  wrapper.SetReceiveHandler(resource, [] {});
  wrapper.Cleanup(resource);
  wrapper.SomeIp_Get(resource, std::chrono::milliseconds{0});
  if constexpr (requires { &Wrapper::SomeIp_Set; }) {
    EXPECT_TRUE(wrapper.SomeIp_Set(resource, {}, std::chrono::seconds{0})) << "as if the time had run out";
  }
  return capture.Lines();
}

TEST(Wrappers, TellThatAFindFailed) {
  EXPECT_EQ(LinesOfAFindWithoutRuntime<ChargingManagementCoreProxyWrapper>(),
            (Lines{"[cmcwrapper] ChargingManagementCoreProxyWrapper - StartFindService",
                   "[cmcwrapper] ChargingManagementCoreProxyWrapper::StartFindService - StartFindService - FAILLED - catch error block",
                   "[cmcwrapper] ChargingManagementCoreProxyWrapper::StartFindService - Error: ServiceHandlePtr is NULL"}));
  EXPECT_EQ(LinesOfAFindWithoutRuntime<RouteBasedEnergyContentsProxyWrapper>(),
            (Lines{"[rbewrapper] RouteBasedEnergyContentsProxyWrapper - StartFindService",
                   "[rbewrapper] RouteBasedEnergyContentsProxyWrapper::StartFindService - StartFindService - FAILLED - catch error block",
                   "[rbewrapper] RouteBasedEnergyContentsProxyWrapper::StartFindService - Error: ServiceHandlePtr is NULL"}));
}

TEST(Wrappers, ASecondFindThatFailsLeavesTheFirstOneRunningAndSaysBoth) {
  const test_support::TempRoot root;
  ::setenv("ARA_ROOT", root.Path().c_str(), 1);
  ChargingManagementCoreProxyWrapper wrapper;
  auto runtime = std::make_unique<xr::com::runtime::Component_singleton>(false, "");
  EXPECT_TRUE(wrapper.StartFindService([](auto) {}));
  runtime.reset();
  const Capture capture;
  EXPECT_FALSE(wrapper.StartFindService([](auto) {}));
  EXPECT_EQ(capture.Lines(),
            (Lines{"[cmcwrapper] ChargingManagementCoreProxyWrapper - StartFindService",
                   "[cmcwrapper] ChargingManagementCoreProxyWrapper::StartFindService - StartFindService - FAILLED - catch error block",
                   "[cmcwrapper] ChargingManagementCoreProxyWrapper::StartFindService - StartFindService - STARTED SUCCESSFULLY"}));
}

TEST(Wrappers, TellWhatTheyDoNotServe) {
  EXPECT_EQ(LinesAboutUnserved<ChargingManagementCoreProxyWrapper>(enums::SOMEIP_RESOURCE_TYPE::TargetSocChargings),
            (Lines{"[cmcwrapper] Update not implemented for this data type.", "[cmcwrapper] Subscribe not implemented for this data type.",
                   "[cmcwrapper] GetCachedSamples not implemented for this data type.",
                   "[cmcwrapper] SetReceiveHandler not implemented for this data type.",
                   "[cmcwrapper] Cleanup not implemented for this data type.",
                   "[cmcwrapper] Get not implemented for this someip data type.", "[cmcwrapper] Set not implemented for this data type."}));
  EXPECT_EQ(
      LinesAboutUnserved<RouteBasedEnergyContentsProxyWrapper>(enums::SOMEIP_RESOURCE_TYPE::Views),
      (Lines{"[rbewrapper] Update not implemented for this data type.", "[rbewrapper] Subscribe not implemented for this data type.",
             "[rbewrapper] GetCachedSamples not implemented for this data type.",
             "[rbewrapper] SetReceiveHandler not implemented for this data type.",
             "[rbewrapper] Update not implemented for this data type.", "[rbecwrapper] Get not implemented for this someip data type."}));
}

TEST(Wrappers, ThrowWhereThereIsNoProxyOrNoGetUnderWay) {
  ChargingManagementCoreProxyWrapper wrapper;
  using enums::SOMEIP_RESOURCE_TYPE;
  EXPECT_THROW(wrapper.Update(SOMEIP_RESOURCE_TYPE::Views), xr::com::Service_not_available_exception);
  EXPECT_THROW(wrapper.PrepareGets(), xr::com::Service_not_available_exception);
  EXPECT_THROW(wrapper.SomeIp_Get(SOMEIP_RESOURCE_TYPE::Views, std::chrono::milliseconds{0}), std::future_error);
  const types::SetPayloadVariant plug{ylt::services::chargingmanagementcore::datatypes::DT_chargingPlugs_struct{}};
  EXPECT_THROW(wrapper.SomeIp_Set(SOMEIP_RESOURCE_TYPE::Views, plug, std::chrono::seconds{0}), boost::bad_get)
      << "before anything goes out";
}

}  // namespace
}  // namespace trov
