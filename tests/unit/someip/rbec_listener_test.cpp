#include <memory>
#include <vector>

#include <gtest/gtest.h>

#include "someip/rbec/route_based_energy_contents_listener.h"
#include "tests/unit/someip/doubles.h"
#include "tests/unit/someip/handles.h"

#include "ara/log/testing/capture.h"

namespace trov::testing {
namespace {

namespace rbec = ylt::services::routebasedenergycontents::datatypes;

using routeBasedEnergyContents::RouteBasedEnergyContentsListener;
using ::testing::ElementsAre;
using ::testing::InSequence;
using ::testing::Return;

class RbecListener : public ::testing::Test {
 protected:
  RbecListener() { listener->SetCommunicationsManager(mediator); }

  static rbec::DT_targetSocChargings_struct Record(int type, int targetSoc) {
    rbec::DT_targetSocChargings_struct record;
    if (type >= 0) record.type = static_cast<rbec::DT_RouteBasedEnergyContents_targetSocChargings_type>(type);
    if (targetSoc >= 0) record.targetSoc = static_cast<std::uint8_t>(targetSoc);
    return record;
  }

  void ExpectRelayed(std::uint32_t targetSoc) {
    EXPECT_CALL(*mediator, TellZuvaToUpdate_NavTargetSoc(targetSoc));
    EXPECT_CALL(*mediator, TellSomeIpToUpdate_NavTargetSoc(targetSoc)).WillOnce(Return(enums::SOMEIP_RESPONSE_TYPE::SET_TIMEOUT));
  }

  ara::log::testing::Capture log;
  std::shared_ptr<MockRbecWrapper> wrapper = std::make_shared<::testing::NiceMock<MockRbecWrapper>>();
  std::shared_ptr<MockRbecMediator> mediator = std::make_shared<::testing::StrictMock<MockRbecMediator>>();
  std::shared_ptr<RouteBasedEnergyContentsListener> listener = std::make_shared<RouteBasedEnergyContentsListener>(wrapper);
};

TEST_F(RbecListener, OnlyAWholeTargetIsRelayedFirstToRestThenToTheVehicle) {
  const auto sample = std::make_shared<const std::vector<rbec::DT_targetSocChargings_struct>>(
      std::vector{Record(-1, 50), Record(1, 50), Record(0, -1), Record(0, 0), Record(0, 80)});
  EXPECT_CALL(*wrapper, GetCachedSamples(Resource::TargetSocChargings))
      .WillOnce(Return(types::RbecCachedSamplesVariant{std::vector{sample}}));
  {
    const InSequence sequence;
    ExpectRelayed(0);
    ExpectRelayed(80);
    EXPECT_CALL(*wrapper, Cleanup(Resource::TargetSocChargings));
  }
  listener->OnReceived_TargetSocChargings();
  EXPECT_THAT(log.Lines(),
              ElementsAre("[RBEC_Listener][SomeIp -> Zuva] Received notification regarding TargetSocChargings..",
                          "[RBEC_Listener][SomeIp -> Zuva] TargetSocChargings notification: There are 1elements in the CachedSamples..."));
}

TEST_F(RbecListener, AGetRelaysTooAndAnEmptyAnswerSaysNothing) {
  EXPECT_CALL(*wrapper, SomeIp_Get(Resource::TargetSocChargings, std::chrono::milliseconds{2000}))
      .WillOnce(Return(types::RbecGetResultVariant{std::vector{Record(0, 70)}}))
      .WillOnce(Return(types::RbecGetResultVariant{std::vector<rbec::DT_targetSocChargings_struct>{}}));
  ExpectRelayed(70);
  listener->FetchData();
  const auto lines = log.Lines().size();
  listener->FetchData();
  EXPECT_EQ(log.Lines().size(), lines + 2);
}

TEST_F(RbecListener, LossAndReturnAreLoggedOnly) {
  bool proxyIsNull = true;
  ON_CALL(*wrapper, IsProxyNull).WillByDefault([&] { return proxyIsNull; });
  ON_CALL(*wrapper, CreateServiceProxy).WillByDefault([&](auto&) { proxyIsNull = false; });
  EXPECT_CALL(*wrapper, Subscribe(Resource::TargetSocChargings));
  listener->OnServiceFound({Handle<MockRbecWrapper>("0x0001")});
  EXPECT_EQ(log.Lines().back(), "[RBEC_Listener] Subscribed to TargetSocChargings resource..");
  listener->OnServiceFound({});
  listener->OnServiceFound({Handle<MockRbecWrapper>("0x0001")});
  EXPECT_EQ(log.Lines().back(), "OnServiceFound  step 3 not reached...");
}

}  // namespace
}  // namespace trov::testing
