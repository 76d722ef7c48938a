#include <future>
#include <memory>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

#include "commmngr/communications_manager.h"
#include "tests/support/wait_for.h"
#include "tests/unit/commmngr/neighbours.h"
#include "tests/unit/commmngr/sleeping_thread.h"

#include "ara/log/testing/capture.h"

namespace trov::testing {
namespace {

using enums::SOMEIP_RESPONSE_TYPE;
using ::testing::_;
using ::testing::Contains;
using ::testing::Eq;
using ::testing::InSequence;
using ::testing::IsEmpty;
using ::testing::Return;
using ::testing::Throw;

class TowardVehicle : public ::testing::Test {
 protected:
  TowardVehicle() { manager.SetSomeIp(vehicle); }

  ara::log::testing::Capture log{ara::log::LogLevel::kDebug};
  commMngr::CommunicationsManager manager;
  std::shared_ptr<MockListener> vehicle = std::make_shared<::testing::StrictMock<MockListener>>();
};

TEST_F(TowardVehicle, AClientAndTheNavigationWriteTheSameControlUnderTheirOwnNames) {
  using Type = cmc::DT_ChargingManagementCore_valueControls_type;
  const InSequence order;
  EXPECT_CALL(*vehicle, Update_ValueControls(Type::immediateChargingOptionsNavTargetSoc, Some(80U), _, "ZUVA"))
      .WillOnce(Return(SOMEIP_RESPONSE_TYPE::SET_TIMEOUT));
  EXPECT_CALL(*vehicle, Update_ValueControls(Type::immediateChargingOptionsNavTargetSoc, Some(300U), _, "RBEC"))
      .WillOnce(Return(SOMEIP_RESPONSE_TYPE::SET_SUCCESS));
  EXPECT_EQ(manager.TellSomeIpToUpdate_ValueControls("immediateChargingOptionsNavTargetSoc", Some(80U), {}),
            SOMEIP_RESPONSE_TYPE::SET_TIMEOUT);
  EXPECT_EQ(manager.TellSomeIpToUpdate_NavTargetSoc(300), SOMEIP_RESPONSE_TYPE::SET_SUCCESS);
}

TEST_F(TowardVehicle, AnUnknownSpecialStateThrowsAndReleasesTheLock) {
  EXPECT_THROW(manager.TellSomeIpToUpdate_ValueControls("bidirectionalChargingModesMinSoc", {}, Some("on")), qe::com::bad_optional_access);
  EXPECT_THAT(log.Lines(), Contains("[CommMngr][Someip -> Zuva] Map exception"));
  EXPECT_CALL(*vehicle, Update_ValueControls(_, Eq(Opt<std::uint32_t>{}), _, _)).WillOnce(Return(SOMEIP_RESPONSE_TYPE::SET_SUCCESS));
  EXPECT_EQ(manager.TellSomeIpToUpdate_ValueControls("bidirectionalChargingModesMinSoc", {}, Some("off")),
            SOMEIP_RESPONSE_TYPE::SET_SUCCESS);
}

TEST_F(TowardVehicle, AnUnknownTypeNeverReachesTheListener) {
  EXPECT_EQ(manager.TellSomeIpToUpdate_ValueControls("nothing", {}, {}), SOMEIP_RESPONSE_TYPE::SET_ERROR);
  EXPECT_EQ(manager.TellSomeIpToUpdate_SwitchControls("nothing", {}), SOMEIP_RESPONSE_TYPE::SET_ERROR);
  EXPECT_EQ(manager.TellSomeIpToUpdate_Views("nothing", {}, {}), SOMEIP_RESPONSE_TYPE::SET_ERROR);
  EXPECT_EQ(manager.TellSomeIpToUpdate_pastErrorInformation("nothing", {}), SOMEIP_RESPONSE_TYPE::SET_ERROR);
  EXPECT_EQ(manager.TellSomeIpToUpdate_ResetStatus(Some("nothing")), SOMEIP_RESPONSE_TYPE::SET_ERROR);
  EXPECT_EQ(log.Lines().back(), "[CommMngr][Someip -> Zuva] Map exception");
}

TEST_F(TowardVehicle, AnUnknownSwitchValueFailsTheWriteButAnUnknownViewWordIsLeftOut) {
  EXPECT_EQ(manager.TellSomeIpToUpdate_SwitchControls("frontFlapState", Some("ajar")), SOMEIP_RESPONSE_TYPE::SET_ERROR);
  EXPECT_CALL(*vehicle, Update_SwitchControls(cmc::DT_ChargingManagementCore_switchControls_type::frontFlapState,
                                              Some(cmc::DT_ChargingManagementCore_switchControls_switchValue::opening)))
      .WillOnce(Return(SOMEIP_RESPONSE_TYPE::SET_SUCCESS));
  EXPECT_EQ(manager.TellSomeIpToUpdate_SwitchControls("frontFlapState", Some("opening")), SOMEIP_RESPONSE_TYPE::SET_SUCCESS);

  EXPECT_CALL(*vehicle,
              Update_Views(cmc::DT_ChargingManagementCore_views_type::popup, Eq(Opt<cmc::DT_ChargingManagementCore_views_content>{}),
                           Some(cmc::DT_ChargingManagementCore_views_visibility::noView)))
      .WillOnce(Return(SOMEIP_RESPONSE_TYPE::SET_SUCCESS));
  EXPECT_EQ(manager.TellSomeIpToUpdate_Views("popup", {}, Some("noView")), SOMEIP_RESPONSE_TYPE::SET_SUCCESS);
  EXPECT_THAT(log.Lines(), Contains("[CommMngr][Zuva -> SomeIp] Unable to map View {content} no_value from zuva (or View {content} was "
                                    "not updated in this request)"));
  EXPECT_THAT(
      log.Lines(),
      Contains("[CommMngr][Zuva -> SomeIp] Translated View object {visibility} noView from zuva into {visibility} 0 for someip..."));
}

TEST_F(TowardVehicle, AnAbsentResetWordIsAnErrorWithoutALineAndAListenersExceptionIsOneToo) {
  EXPECT_EQ(manager.TellSomeIpToUpdate_ResetStatus({}), SOMEIP_RESPONSE_TYPE::SET_ERROR);
  EXPECT_THAT(log.Lines(), IsEmpty());
  EXPECT_CALL(*vehicle, Update_FactoryResetInfo(cmc::DT_ChargingManagementCore_resetToFactoryData_resetToFactoryData::origin))
      .WillOnce(Throw(std::runtime_error{"gone"}));
  EXPECT_EQ(manager.TellSomeIpToUpdate_ResetStatus(Some("origin")), SOMEIP_RESPONSE_TYPE::SET_ERROR);
}

TEST_F(TowardVehicle, AWriterGetsItsTurnWhileTheNavigationRelaysTargetAfterTarget) {
  std::promise<void> inside, leave;
  std::vector<std::string> order;  // guarded by the mediator's own mutex
  EXPECT_CALL(*vehicle, Update_ValueControls).WillRepeatedly([&](auto, auto&&, auto&&, const std::string& source) {
    if (order.empty()) inside.set_value(), leave.get_future().wait();
    order.push_back(source);
    return SOMEIP_RESPONSE_TYPE::SET_SUCCESS;
  });
  std::thread navigation{[&] {
    for (int relay = 0; relay < 20; ++relay) manager.TellSomeIpToUpdate_NavTargetSoc(80);
  }};
  inside.get_future().wait();
  {
    const WatchedThread writer{[&] { manager.TellSomeIpToUpdate_ValueControls("bidirectionalChargingModesMinSoc", Some(1U), {}); }};
    EXPECT_TRUE(test_support::WaitFor([&] { return writer.Sleeps(); }));
    leave.set_value();
  }
  navigation.join();
  EXPECT_EQ(order.at(1), "ZUVA") << "behind the relay that ran, before the nineteen that came later";
}

TEST_F(TowardVehicle, WithoutAListenerEveryWriteIsAnError) {
  manager.SetSomeIp(nullptr);
  EXPECT_EQ(manager.TellSomeIpToUpdate_ValueControls("bidirectionalChargingModesMinSoc", Some(1U), {}), SOMEIP_RESPONSE_TYPE::SET_ERROR);
  EXPECT_EQ(manager.TellSomeIpToUpdate_NavTargetSoc(1), SOMEIP_RESPONSE_TYPE::SET_ERROR);
  EXPECT_EQ(manager.TellSomeIpToUpdate_SwitchControls("frontFlapState", {}), SOMEIP_RESPONSE_TYPE::SET_ERROR);
  EXPECT_EQ(manager.TellSomeIpToUpdate_Views("popup", {}, {}), SOMEIP_RESPONSE_TYPE::SET_ERROR);
  EXPECT_EQ(manager.TellSomeIpToUpdate_pastErrorInformation("pastErrorInformation1", Some(true)), SOMEIP_RESPONSE_TYPE::SET_ERROR);
  EXPECT_EQ(manager.TellSomeIpToUpdate_ResetStatus(Some("origin")), SOMEIP_RESPONSE_TYPE::SET_ERROR);
  manager.TellSomeIpToStartListener();
}

}  // namespace
}  // namespace trov::testing
