#include <memory>
#include <vector>

#include <gtest/gtest.h>

#include "someip/rbec/route_based_energy_contents_listener.h"
#include "tests/unit/someip/doubles.h"

#include "ara/log/testing/capture.h"

namespace trov::testing {
namespace {

namespace rbec = ylt::services::routebasedenergycontents::datatypes;

using routeBasedEnergyContents::RouteBasedEnergyContentsListener;
using ::testing::_;
using ::testing::InSequence;
using ::testing::Return;

class RbecListener : public ::testing::Test {
 protected:
  RbecListener() {
    mediator->SetZuva(rest);
    mediator->SetSomeIp(vehicle);
    listener->SetCommunicationsManager(mediator);
  }

  static rbec::DT_targetSocChargings_struct Record(int type, int targetSoc) {
    rbec::DT_targetSocChargings_struct record;
    if (type >= 0) record.type = static_cast<rbec::DT_RouteBasedEnergyContents_targetSocChargings_type>(type);
    if (targetSoc >= 0) record.targetSoc = static_cast<std::uint8_t>(targetSoc);
    return record;
  }

  void ExpectRelayed(std::uint8_t targetSoc) {
    EXPECT_CALL(*rest, Update_NavTargetSoc(targetSoc));
    EXPECT_CALL(*vehicle, Update_ValueControls(_, Some<std::uint32_t>(targetSoc), _, "RBEC"))
        .WillOnce(Return(enums::SOMEIP_RESPONSE_TYPE::SET_TIMEOUT));
  }

  ara::log::testing::Capture log;
  std::shared_ptr<MockRbecWrapper> wrapper = std::make_shared<::testing::NiceMock<MockRbecWrapper>>();
  std::shared_ptr<MockZuvaServer> rest = std::make_shared<::testing::StrictMock<MockZuvaServer>>();
  std::shared_ptr<MockListener> vehicle = std::make_shared<::testing::StrictMock<MockListener>>();
  std::shared_ptr<commMngr::CommunicationsManager> mediator = std::make_shared<commMngr::CommunicationsManager>();
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
  EXPECT_EQ(log.Lines()[1], "[RBEC_Listener][SomeIp -> Zuva] TargetSocChargings notification: There are 1elements in the CachedSamples...");
}

TEST_F(RbecListener, AGetRelaysTooAndAnEmptyAnswerSaysNothing) {
  EXPECT_CALL(*wrapper, SomeIp_Get(Resource::TargetSocChargings, std::chrono::milliseconds{2000}))
      .WillOnce(Return(types::RbecGetResultVariant{std::vector{Record(0, 70)}}))
      .WillOnce(Return(types::RbecGetResultVariant{std::vector<rbec::DT_targetSocChargings_struct>{}}));
  ExpectRelayed(70);
  listener->FetchData();
  listener->FetchData();
  EXPECT_EQ(log.Lines().back(), "[RBEC_Listener][SomeIpGET -> Zuva] Getting data from the someip server...");
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
