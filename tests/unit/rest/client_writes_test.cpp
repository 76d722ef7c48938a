#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <memory>
#include <ostream>
#include <stdexcept>
#include <string>
#include <utility>

#include "ara/log/testing/capture.h"
#include "tests/unit/rest/application.h"

namespace rest_test {
namespace {

using testing::Contains;
using testing::ElementsAre;
using trov::Word;
using trov::enums::SOMEIP_RESPONSE_TYPE;
using Answer = std::pair<int, std::string>;

const Answer kDone{200, ""};
const Answer kInternal{500, "internal"};
const Answer kNotInRange{400, "Bad Request: value not in allowed range"};

class ClientWrites : public testing::Test {
 protected:
  void ShowPopup() { application->Update_Views(Word{"popup"}, Word{"chargingInformationScreen"}, Word{"newRequest"}); }
  Answer PostVisibility(const std::string& word) { return application->PostTo("views", "popup", R"({"visibility":")" + word + "\"}"); }

  std::unique_ptr<Application> application = Application::Populated();
  RecordingMediator& mediator = *application->mediator;
};

TEST_F(ClientWrites, AcceptedViewReachesVehicleAndThenTheObject) {
  ShowPopup();
  mediator.meanwhile = [&] { EXPECT_EQ(application->Object("views", "popup")["visibility"], "newRequest"); };
  EXPECT_EQ(PostVisibility("requestedViewVisible"), kDone);
  EXPECT_THAT(mediator.asked, ElementsAre("view popup - requestedViewVisible"));
  EXPECT_EQ(application->Object("views", "popup")["visibility"], "requestedViewVisible");
}

struct SetResult {
  const char* name;
  SOMEIP_RESPONSE_TYPE response;
  const char* line;

  friend void PrintTo(const SetResult& row, std::ostream* out) { *out << row.line; }
};

class SetStatus : public testing::TestWithParam<SetResult> {};

TEST_P(SetStatus, IsAnInternalErrorWithTheReasonInTheLogAlone) {
  const auto application = Application::Populated();
  application->Update_Views(Word{"popup"}, Word{"chargingInformationScreen"}, Word{"newRequest"});
  application->mediator->response = GetParam().response;
  const ara::log::testing::Capture log;
  EXPECT_EQ(application->PostTo("views", "popup", R"({"visibility":"noView"})"), kInternal);
  EXPECT_THAT(log.Lines(), Contains(GetParam().line));
  EXPECT_THAT(log.Lines(), Contains("[Zuva][Zuva -> SomeIp] View Internal error"));
  EXPECT_EQ(application->Object("views", "popup")["visibility"], "newRequest");
}

INSTANTIATE_TEST_SUITE_P(Failures, SetStatus,
                         testing::Values(SetResult{"Mismatch", SOMEIP_RESPONSE_TYPE::SET_DATA_MISMATCH,
                                                   "[Zuva][Zuva -> Someip] View - Response data does not match. Not implemented."},
                                         SetResult{"TimeOut", SOMEIP_RESPONSE_TYPE::SET_TIMEOUT,
                                                   "[Zuva][Zuva -> Someip] View - Response not received from the setter in due time."},
                                         SetResult{"Error", SOMEIP_RESPONSE_TYPE::SET_ERROR,
                                                   "[Zuva][Zuva -> Someip] View - Error while setting values on the someip."},
                                         SetResult{"Unassigned", SOMEIP_RESPONSE_TYPE{3},
                                                   "[Zuva][Zuva -> Someip] Set Status Case unknown. Returning false."}),
                         [](const auto& row) { return row.param.name; });

TEST(ClientWritesUnchecked, ANumberThatTheVehiclesTypeCannotHoldIsRefusedWhereItIsNarrowed) {
  Application unchecked;
  unchecked.PopulateServer();
  for (const auto& control : unchecked.Server().GetChargingManagementCoreValueControls()->GetValueControlObjects()) {
    control->SetPreUpdateCallback([](const auto&, const auto&, auto&) { return true; });  // in place of the object's own check
  }
  unchecked.RegisterPreUpdateCallBacks();
  const auto post = [&](const char* body) { return unchecked.PostTo("valueControls", "immediateChargingOptionsTargetSoc", body); };
  EXPECT_EQ(post(R"({"currentValue":4294967376})"), kNotInRange) << "its low half is 80";
  EXPECT_EQ(post(R"({"currentValue":-1,"specialState":"off"})"), kNotInRange);
  EXPECT_THAT(unchecked.mediator->asked, testing::IsEmpty());
}

TEST_F(ClientWrites, WithoutMediatorTheSetHasFailed) {
  ShowPopup();
  application->SetCommunicationsManager(nullptr);
  EXPECT_EQ(PostVisibility("requestedViewVisible"), kInternal);
}

TEST_F(ClientWrites, ExceptionOutOfTheMediatorIsAnInternalError) {
  ShowPopup();
  mediator.meanwhile = [] { throw std::runtime_error{"broken"}; };
  EXPECT_EQ(PostVisibility("requestedViewVisible"), kInternal);
}

TEST_F(ClientWrites, ViewKeepsItsWayToTheVehicleWhileItIsAway) {
  ShowPopup();
  application->Update_Views(Word{"popup"}, Word{"nothing"}, Word{});
  ShowPopup();
  EXPECT_EQ(PostVisibility("requestedViewVisible"), kDone);
  EXPECT_THAT(mediator.asked, ElementsAre("view popup - requestedViewVisible"));
}

TEST_F(ClientWrites, ReportedConfigurationNarrowsTheSwitch) {
  const std::string type = "batteryCareModesBcamActivation";
  const auto post = [&] { return application->PostTo("switchControls", type, R"({"switchValue":"activated"})"); };
  EXPECT_EQ(post(), kDone);
  application->Update_SwitchControls(Word{type}, Word{"deactivated"}, Word{}, std::vector<std::string>{"deactivated"});
  EXPECT_EQ(post(), kNotInRange);
  application->Update_SwitchControls(Word{type}, Word{"deactivated"}, Word{}, std::vector<std::string>{});
  EXPECT_EQ(post(), kNotInRange) << "an empty list refuses everything";
  EXPECT_THAT(mediator.asked, ElementsAre("switch batteryCareModesBcamActivation activated"));
}

}  // namespace
}  // namespace rest_test
