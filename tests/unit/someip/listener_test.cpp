#include <memory>
#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "someip/cmc/charging_management_core_listener.h"
#include "someip/cmc/notification_texts.h"
#include "someip/cmc/resources.h"
#include "tests/unit/someip/doubles.h"

#include "ara/log/testing/capture.h"
#include "xr/com/exceptions.h"

namespace trov::testing {
namespace {

using chargingManagementCoreListener::ChargingManagementCoreListener;
using chargingManagementCoreListener::kNotified;
using chargingManagementCoreListener::Resources;
using ::testing::_;
using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::Eq;
using ::testing::InSequence;
using ::testing::Property;
using ::testing::Return;

using Handle_type = MockCmcWrapper::Handle_type;
using Handles = std::vector<Handle_type>;
using View = cmc::DT_ChargingManagementCore_views_type;
using Content = cmc::DT_ChargingManagementCore_views_content;

class Listener : public ::testing::Test {
 protected:
  Listener() {
    mediator->SetZuva(rest);
    listener->SetCommunicationsManager(mediator);
    ON_CALL(*wrapper, IsProxyNull).WillByDefault([this] { return proxyIsNull; });
    ON_CALL(*wrapper, CreateServiceProxy).WillByDefault([this](auto&) { proxyIsNull = false; });
  }

  static cmc::DT_views_struct ViewRecord(Opt<View> type, Opt<Content> content = {}) {
    cmc::DT_views_struct record;
    record.type = type;
    record.content = content;
    return record;
  }

  template <class Record>
  static std::shared_ptr<const std::vector<Record>> Sample(std::vector<Record> records) {
    return std::make_shared<const std::vector<Record>>(std::move(records));
  }

  bool proxyIsNull = true;
  ara::log::testing::Capture log;
  std::shared_ptr<MockCmcWrapper> wrapper = std::make_shared<::testing::NiceMock<MockCmcWrapper>>();
  std::shared_ptr<MockZuvaServer> rest = std::make_shared<::testing::StrictMock<MockZuvaServer>>();
  std::shared_ptr<commMngr::CommunicationsManager> mediator = std::make_shared<commMngr::CommunicationsManager>();
  std::shared_ptr<ChargingManagementCoreListener> listener = std::make_shared<ChargingManagementCoreListener>(wrapper);
};

TEST_F(Listener, TheFirstInstanceMakesTheProxyAndSubscribesInTheFixedOrder) {
  std::vector<Resource> order;
  {
    const InSequence sequence;
    EXPECT_CALL(*wrapper, CreateServiceProxy(Property(&Handle_type::instance, Eq(qe::com::runtime::Instance_id{"0x0001"}))));
    for (int i = 0; i < 15; ++i) {
      EXPECT_CALL(*wrapper, SetReceiveHandler(_, _)).WillOnce([&order](Resource resource, auto&&) { order.push_back(resource); });
      EXPECT_CALL(*wrapper, Subscribe(_)).WillOnce([&order](Resource resource) { EXPECT_EQ(resource, order.back()); });
    }
  }
  listener->OnServiceFound({Handle<MockCmcWrapper>("0x0001"), Handle<MockCmcWrapper>("0x0002")});
  EXPECT_THAT(order, ElementsAre(Resource::ChargingPlugs, Resource::ValueControls, Resource::SwitchControls, Resource::Views,
                                 Resource::NotificationMarkers, Resource::OruUpdateApprovals, Resource::Notifications,
                                 Resource::FactoryResetData, Resource::chargingProcessInformation, Resource::valueIndications,
                                 Resource::pastErrorInformation, Resource::BatteryCareModes, Resource::BatteryPreconditionings,
                                 Resource::BatteryPreconditioningEnergies, Resource::BidirectionalChargingModes));
  const auto lines = log.Lines();
  ASSERT_EQ(lines.size(), 18U);
  EXPECT_EQ(lines[2], "OnServiceFound  step 3 reached...");
  EXPECT_EQ(lines[6], "[SomeIp] Subscribed to Views resource..");
}

TEST_F(Listener, LossAndReturnTellTheRegistryOnlyAndAnEmptyListBeforeTheFirstTellsNobody) {
  listener->OnServiceFound({});
  EXPECT_THAT(log.Lines(), ElementsAre("OnServiceFound  step 1 reached...", "OnServiceFound No service available"));
  const Handles one{Handle<MockCmcWrapper>("0x0001")};
  listener->OnServiceFound(one);
  EXPECT_CALL(*wrapper, Subscribe).Times(0);
  {
    const InSequence sequence;
    EXPECT_CALL(*rest, Update_Registry(false));
    EXPECT_CALL(*rest, Update_Registry(true)).Times(2);
  }
  listener->OnServiceFound({});
  listener->OnServiceFound(one);
  listener->OnServiceFound(one);  // a mere change of the list counts as a return
  EXPECT_EQ(log.Lines().back(), "OnServiceFound  step 3 not reached...");
}

TEST_F(Listener, AFirstAppearanceThatThrowsIsCompletedByTheNextList) {
  const Handles one{Handle<MockCmcWrapper>("0x0001")};
  EXPECT_CALL(*wrapper, CreateServiceProxy).WillOnce(::testing::Throw(std::runtime_error{"no socket"})).WillOnce([this](auto&) {
    proxyIsNull = false;
  });
  EXPECT_CALL(*wrapper, Subscribe).WillOnce(Return()).WillOnce(::testing::Throw(std::bad_alloc{})).WillRepeatedly(Return());
  EXPECT_THROW(listener->OnServiceFound(one), std::runtime_error);
  EXPECT_THROW(listener->OnServiceFound(one), std::bad_alloc);
  EXPECT_CALL(*rest, Update_Registry(false));
  listener->OnServiceFound({});
  EXPECT_CALL(*wrapper, Subscribe).Times(15);
  EXPECT_CALL(*rest, Update_Registry(true)).Times(2);
  listener->OnServiceFound(one);
  listener->OnServiceFound(one);
}

TEST_F(Listener, CallbacksOfAListenerThatIsGoneReturn) {
  std::function<void(Handles)> found;
  std::function<void()> received;
  EXPECT_CALL(*wrapper, StartFindService).WillOnce([&found](auto handler) {
    found = std::move(handler);
    return true;
  });
  EXPECT_CALL(*wrapper, SetReceiveHandler(_, _)).WillRepeatedly([&received](auto, auto handler) { received = std::move(handler); });
  listener->StartListener();
  EXPECT_EQ(log.Lines().back(), "Find Service started...");
  found({Handle<MockCmcWrapper>("0x0001")});
  listener.reset();
  EXPECT_CALL(*wrapper, Update).Times(0);
  found({});
  received();
}

TEST_F(Listener, OneRunOfAHandlerPassesEverySampleOnInOrder) {
  const auto samples = std::vector{Sample<cmc::DT_views_struct>({ViewRecord(View::popup, Content::nothing), ViewRecord({})}),
                                   Sample<cmc::DT_views_struct>({}), Sample<cmc::DT_views_struct>({ViewRecord(View::itSystemScreen)})};
  const InSequence sequence;
  EXPECT_CALL(*wrapper, Update(Resource::Views));
  EXPECT_CALL(*wrapper, GetCachedSamples(Resource::Views)).WillOnce(Return(samples));
  EXPECT_CALL(*rest, Update_Views(Some("popup"), Some("nothing"), Word{}));
  EXPECT_CALL(*rest, Update_Views(Some("itSystemScreen"), Word{}, Word{}));
  EXPECT_CALL(*wrapper, Cleanup(Resource::Views));
  listener->OnReceived_Views();
  EXPECT_EQ(log.Lines()[1], "[SomeIp][SomeIp -> Zuva] Views notification: There are 3elements in the CachedSamples...");
  EXPECT_THAT(log.Lines(), Contains("[SomeIp][SomeIp -> Zuva] View object has no type... Ignoring notification..."));
}

TEST_F(Listener, WithoutSamplesAHandlerSaysSoAndNothingIsCleanedUp) {
  EXPECT_CALL(*wrapper, GetCachedSamples).WillOnce(Return(types::Samples<cmc::DT_views_struct>{}));
  EXPECT_CALL(*wrapper, Cleanup).Times(0);
  listener->OnReceived_Views();
  EXPECT_EQ(log.Lines().back(), "[SomeIp][SomeIp -> Zuva] Views notification: There are no elements in the CachedSamples. Returning...");
}

TEST_F(Listener, TheLineOfAnEmptyCacheBeginsLikeThatOfItsCountButInTwo) {
  const auto alike = [](auto resource) {
    constexpr const auto& row = kNotified<decltype(resource)>;
    return row.empty == std::string{row.count} + "no elements in the CachedSamples. Returning...";
  };
  std::vector<Resource> others;
  for (const auto resource : chargingManagementCoreListener::kGetOrder) {
    Resources::With(resource, [&](auto row) {
      if (!alike(row)) others.push_back(resource);
    });
  }
  EXPECT_THAT(others, ElementsAre(Resource::pastErrorInformation, Resource::BidirectionalChargingModes));
  EXPECT_EQ(kNotified<chargingManagementCoreListener::BidirectionalChargingModes>.empty,
            kNotified<chargingManagementCoreListener::BatteryCareModes>.empty);
}

TEST_F(Listener, ThreeHandlersReturnAtOnceWithoutAProxy) {
  EXPECT_CALL(*wrapper, Update).Times(0);
  EXPECT_CALL(*wrapper, Cleanup).Times(0);
  listener->OnReceived_pastErrorInformation();
  listener->OnReceived_valueIndications();
  listener->OnReceived_chargingProcessInformation();
  EXPECT_EQ(log.Lines().size(), 3U);
}

TEST_F(Listener, TheChargingProcessAloneTellsWhatItsRecordHolds) {
  proxyIsNull = false;
  cmc::DT_chargingProcessInformation_struct record;
  record.type = cmc::DT_ChargingManagementCore_chargingProcessInformation_type::chargingProcessInformation;
  record.chargeBulkThreshold = 4294967295U;
  record.evseid = "DE*1";
  record.chargeRateCuteness = cmc::DT_ChargingManagementCore_chargingProcessInformation_chargeRateCuteness::limitedHighSoc;
  const std::vector samples{Sample<cmc::DT_chargingProcessInformation_struct>({record, {}})};
  EXPECT_CALL(*wrapper, GetCachedSamples).WillOnce(Return(samples));
  types::ChargingProcessInformationMappedTuple shown;
  EXPECT_CALL(*rest, Update_chargingProcessInformation(_)).WillOnce([&shown](auto&& tuple) { shown = std::move(tuple); });
  listener->OnReceived_chargingProcessInformation();
  EXPECT_EQ(log.Lines().back(),
            "[SomeIp] chargingProcessInformation - type = 0, chargeBulkThreshold = -1, evseid = DE*1, chargeRateCuteness = 4");
  EXPECT_EQ(std::get<2>(shown), 4294967295U);
  EXPECT_EQ(std::get<9>(shown), std::string{"DE*1"});
}

class Gets : public Listener {
 protected:
  Gets() {
    proxyIsNull = false;
    ON_CALL(*wrapper, SomeIp_Get).WillByDefault([this](Resource resource, const auto& timeout) {
      EXPECT_EQ(timeout, std::chrono::milliseconds{2000});
      asked.push_back(resource);
      return Empty(resource);
    });
  }

  static types::GetResultVariant Empty(Resource resource) {
    types::GetResultVariant result;
    chargingManagementCoreListener::Resources::With(resource, [&result](auto row) { result = typename decltype(row)::Records{}; });
    return result;
  }

  std::vector<Resource> asked;
};

TEST_F(Gets, ACycleAsksInItsOwnOrderAndAnEmptyAnswerChangesNothing) {
  EXPECT_CALL(*wrapper, PrepareGets);
  listener->FetchData();
  EXPECT_THAT(asked, ::testing::ElementsAreArray(chargingManagementCoreListener::kGetOrder));
  std::vector<std::string> lines{"[SomeIp][SomeIpGET -> Zuva] Entered fetch here...",
                                 "[SomeIp][SomeIpGET -> Zuva] Getting data from the someip server..."};
  for (const char* word : {"chargingPlugs", "chargingProcessInformation", "notificationMarkers", "notifications", "oruUpdateApprovals",
                           "pastErrorInformation", "switchControls", "valueIndications", "views", "resetToFactory", "ValueControl",
                           "BidirectionalChargingModes", "BatteryCareModes", "BatteryPreconditionings", "BatteryPreconditioningEnergies"}) {
    lines.push_back(std::string{"[SomeIp][SomeIpGET -> Zuva] Get failed for "} + word + " OR 0 elements retrieved...");
  }
  EXPECT_EQ(log.Lines(), lines);
}

TEST_F(Gets, WhateverIsThrownEndsTheCycleInOneLine) {
  EXPECT_CALL(*wrapper, PrepareGets)
      .WillOnce(::testing::Throw(xr::com::Service_not_available_exception{}))
      .WillOnce(::testing::Throw(std::runtime_error{"no"}))
      .WillOnce(::testing::Throw(7));
  listener->FetchData();
  EXPECT_EQ(log.Lines().back(), "[SomeIp][SomeIpGET -> Zuva] Cant get, service lost - Service not available exception");
  listener->FetchData();
  EXPECT_EQ(log.Lines().back(), "[SomeIp][SomeIpGET -> Zuva] Exception - no");
  listener->FetchData();
  EXPECT_EQ(log.Lines().back(), "[SomeIp][SomeIpGET -> Zuva] Exception - Unknown");
  proxyIsNull = true;
  listener->FetchData();
  EXPECT_EQ(log.Lines().back(), "[SomeIp][SomeIpGET -> Zuva] Cant get... Service not found...");
  EXPECT_THAT(asked, ::testing::IsEmpty());
}

}  // namespace
}  // namespace trov::testing
