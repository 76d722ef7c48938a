#include <memory>
#include <stdexcept>
#include <string>

#include <gtest/gtest.h>

#include "someip/cmc/charging_management_core_listener.h"
#include "tests/unit/someip/doubles.h"

#include "ara/log/testing/capture.h"

namespace trov::testing {
namespace {

using chargingManagementCoreListener::ChargingManagementCoreListener;
using enums::SOMEIP_RESPONSE_TYPE;
using ::testing::Return;
using ::testing::Throw;

using View = cmc::DT_ChargingManagementCore_views_type;

class Sets : public ::testing::Test {
 protected:
  Sets() { ON_CALL(*wrapper, IsProxyNull).WillByDefault(Return(false)); }

  std::string LastLine() const { return log.Lines().back(); }

  ara::log::testing::Capture log;
  std::shared_ptr<MockCmcWrapper> wrapper = std::make_shared<::testing::NiceMock<MockCmcWrapper>>();
  ChargingManagementCoreListener listener{wrapper};
};

TEST_F(Sets, EveryWayToFailHasItsStatusAndItsLine) {
  EXPECT_CALL(*wrapper, SomeIp_Set).WillOnce(Return(true)).WillOnce(Throw(std::runtime_error{"gone"})).WillOnce(Throw(7));
  EXPECT_EQ(listener.Update_Views(View::popup, {}, {}), SOMEIP_RESPONSE_TYPE::SET_TIMEOUT);
  EXPECT_EQ(LastLine(), "[SomeIp][Zuva -> Someip] Views Set timeout.");
  EXPECT_EQ(listener.Update_Views(View::popup, {}, {}), SOMEIP_RESPONSE_TYPE::SET_ERROR);
  EXPECT_EQ(LastLine(), "[SomeIp][Zuva -> Someip] Exception caught while setting a View in SomeIp: gone");
  EXPECT_EQ(listener.Update_Views(View::popup, {}, {}), SOMEIP_RESPONSE_TYPE::SET_ERROR);
  EXPECT_EQ(LastLine(), "[SomeIp][Zuva -> Someip] Unknown Exception caught while setting a View in SomeIp: ");
  EXPECT_CALL(*wrapper, IsProxyNull).WillOnce(Return(true));
  EXPECT_EQ(listener.Update_Views(View::popup, {}, {}), SOMEIP_RESPONSE_TYPE::SET_ERROR);
  EXPECT_EQ(LastLine(), "[SomeIp][Zuva -> Someip] View {type}: 0. Content {value}: 100000. Visibility value: 100000");
}

}  // namespace
}  // namespace trov::testing
