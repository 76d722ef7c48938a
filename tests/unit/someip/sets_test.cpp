#include <memory>
#include <stdexcept>
#include <string>

#include <gtest/gtest.h>
#include <boost/variant/get.hpp>

#include "someip/cmc/charging_management_core_listener.h"
#include "tests/unit/someip/doubles.h"

#include "ara/log/testing/capture.h"

namespace trov::testing {
namespace {

using chargingManagementCoreListener::ChargingManagementCoreListener;
using enums::SOMEIP_RESPONSE_TYPE;
using ::testing::_;
using ::testing::ElementsAre;
using ::testing::Return;
using ::testing::Throw;

using View = cmc::DT_ChargingManagementCore_views_type;
using Visibility = cmc::DT_ChargingManagementCore_views_visibility;

class Sets : public ::testing::Test {
 protected:
  Sets() { ON_CALL(*wrapper, IsProxyNull).WillByDefault(Return(false)); }

  std::string LastLine() const { return log.Lines().back(); }

  ara::log::testing::Capture log;
  std::shared_ptr<MockCmcWrapper> wrapper = std::make_shared<::testing::NiceMock<MockCmcWrapper>>();
  ChargingManagementCoreListener listener{wrapper};
};

TEST_F(Sets, AViewGoesOutWithWhatWasGivenAndWaitsASecond) {
  types::SetPayloadVariant sent;
  EXPECT_CALL(*wrapper, SomeIp_Set(Resource::Views, _, std::chrono::seconds{1})).WillOnce([&sent](auto, const auto& payload, auto) {
    sent = payload;
    return false;
  });
  EXPECT_EQ(listener.Update_Views(View::popup, {}, Visibility::requestedViewVisible), SOMEIP_RESPONSE_TYPE::SET_SUCCESS);
  const auto& record = boost::get<cmc::DT_views_struct>(sent);
  EXPECT_EQ(record.type, View::popup);
  EXPECT_FALSE(record.content);
  EXPECT_EQ(record.visibility, Visibility::requestedViewVisible);
  EXPECT_THAT(log.Lines(),
              ElementsAre("[SomeIp][Zuva -> Someip] Received View object from ZUVA...",
                          "[SomeIp][Zuva -> Someip] View {type}: 0. Content {value}: 100000. Visibility value: 1",
                          "[SomeIp][Zuva -> Someip] Updating the someip field with values received from zuva...",
                          "[SomeIp][Zuva -> Someip] Views set call ended.", "[SomeIp][Zuva -> Someip] Views Set response received."));
}

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

TEST_F(Sets, TheOtherFourFillTheirRecordsAndKeepTheirWords) {
  std::vector<types::SetPayloadVariant> sent;
  EXPECT_CALL(*wrapper, SomeIp_Set).WillRepeatedly([&sent](auto, const auto& payload, auto) {
    sent.push_back(payload);
    return true;
  });
  listener.Update_ValueControls(cmc::DT_ChargingManagementCore_valueControls_type::bidirectionalChargingModesMaxSoc, 100000U, {}, "RBEC");
  EXPECT_EQ(boost::get<cmc::DT_valueControls_struct>(sent.back()).currentValue, 100000U) << "the mark of the log is a value like any other";
  EXPECT_EQ(log.Lines()[0], "[SomeIp] Received ValueControl object from RBEC");
  EXPECT_EQ(log.Lines()[1], "[SomeIp] ValueControl type: 21. ValueControl value: 100000. ValueControl specialState: 100000");
  EXPECT_EQ(LastLine(), "[SomeIp] ValueControls Set timeout");
  listener.Update_SwitchControls(cmc::DT_ChargingManagementCore_switchControls_type::frontFlapState,
                                 cmc::DT_ChargingManagementCore_switchControls_switchValue::open);
  EXPECT_EQ(boost::get<cmc::DT_switchControls_struct>(sent.back()).switchValue,
            cmc::DT_ChargingManagementCore_switchControls_switchValue::open);
  EXPECT_EQ(LastLine(), "[SomeIp] SwitchControls Set timeout");
  listener.Update_pastErrorInformation(cmc::DT_ChargingManagementCore_pastErrorInformation_type::pastErrorInformation1, true);
  EXPECT_EQ(boost::get<cmc::DT_pastErrorInformation_struct>(sent.back()).confirmedByUser, true);
  EXPECT_EQ(LastLine(), "[SomeIp][Zuva -> Someip] PastErrorInformation Set timeout.");
  listener.Update_FactoryResetInfo(cmc::DT_ChargingManagementCore_resetToFactoryData_resetToFactoryData::notOrigin);
  EXPECT_EQ(boost::get<cmc::DT_resetToFactoryData_struct>(sent.back()).resetToFactoryData,
            cmc::DT_ChargingManagementCore_resetToFactoryData_resetToFactoryData::notOrigin);
  EXPECT_EQ(LastLine(), "[SomeIp][Zuva -> Someip] Views Set timeout.") << "the view's words, on purpose";
}

}  // namespace
}  // namespace trov::testing
