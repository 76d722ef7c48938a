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
using testing::IsEmpty;
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
  /// What the vehicle reported about the value control.
  void Configure(trov::Opt<std::uint32_t> minimum, trov::Opt<std::uint32_t> maximum, trov::Opt<std::uint32_t> resolution,
                 trov::Words states = {}) {
    application->Update_ValueControls(
        {Word{kControl}, {}, minimum, maximum, Word{}, Word{}, Word{}, resolution, Word{}, Word{}, std::move(states)});
  }
  Answer PostValue(const std::string& body) { return application->PostTo("valueControls", kControl, body); }

  static constexpr const char* kControl = "immediateChargingOptionsTargetSoc";
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

TEST_F(ClientWrites, RefusedPayloadAsksNobody) {
  ShowPopup();
  EXPECT_EQ(PostVisibility("visible"), kNotInRange);
  EXPECT_EQ(application->PostTo("views", "popup", "{}"), (Answer{400, "Bad Request"})) << "the framework's own answer";
  EXPECT_EQ(application->PostTo("switchControls", "batteryCareModesBcamActivation", "{}"), kNotInRange);
  EXPECT_EQ(PostValue("{}"), kNotInRange);
  EXPECT_EQ(application->PostTo("pastErrorInformation", "pastErrorInformation2", R"({"id":"x"})"),
            (Answer{400, "Bad Request: *confirmedByUser* field is missing"}));
  EXPECT_EQ(application->PostTo("notifications", "chargingNotification1", "{}").first, 405);
  EXPECT_THAT(mediator.asked, IsEmpty());
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

TEST_F(ClientWrites, ValueFollowsTheObjectsOwnRange) {
  EXPECT_EQ(PostValue(R"({"currentValue":3000})"), kDone) << "nothing reported yet: the model's range";
  Configure(10, 50, 5);
  EXPECT_EQ(PostValue(R"({"currentValue":15})"), kDone);
  EXPECT_EQ(PostValue(R"({"currentValue":12})"), kNotInRange);
  EXPECT_EQ(PostValue(R"({"currentValue":55})"), kNotInRange);
  EXPECT_EQ(PostValue(R"({"currentValue":5})"), kNotInRange);
  Configure(3, 50, 5);
  EXPECT_EQ(PostValue(R"({"currentValue":13})"), kNotInRange) << "the value itself must be a multiple, not its distance from the minimum";
  EXPECT_EQ(PostValue(R"({"currentValue":15})"), kDone);
}

TEST_F(ClientWrites, SpecialStateAloneDecides) {
  Configure(10, 50, 5, std::vector<std::string>{"off"});
  EXPECT_EQ(PostValue(R"({"currentValue":12,"specialState":"off"})"), kDone);
  EXPECT_THAT(mediator.asked, ElementsAre("value immediateChargingOptionsTargetSoc 12 off"));
  Configure(10, 50, 5, std::vector<std::string>{});
  EXPECT_EQ(PostValue(R"({"currentValue":15,"specialState":"off"})"), kNotInRange);
  Configure(10, 50, 5);
  EXPECT_EQ(PostValue(R"({"specialState":"off"})"), kDone) << "without a list every state goes";
  EXPECT_EQ(mediator.asked.back(), "value immediateChargingOptionsTargetSoc - off");
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

TEST_F(ClientWrites, StartStopTakesActionsOnly) {
  const auto post = [&](const char* body) { return application->PostTo("switchControls", "immediateActionStartStopCharging", body); };
  const ara::log::testing::Capture log;
  EXPECT_EQ(post(R"({"switchValue":"off"})"), kNotInRange);
  EXPECT_EQ(post(R"({"switchValue":5})"), kNotInRange) << "no action word, whatever it is";
  EXPECT_THAT(log.Lines(), IsEmpty()) << "the outermost wrapper has answered";
  EXPECT_EQ(post("{}"), kNotInRange);
  EXPECT_THAT(log.Lines(), Contains("[Zuva][Zuva -> SomeIp] SwitchControl POST failed due to validation"));
  EXPECT_EQ(post(R"({"switchValue":"stopCharging"})"), kDone);
}

TEST_F(ClientWrites, LockControlsTakeLockWordsAndAnswerByTheirOrigin) {
  application->Update_ChargingPlugs(Word{"frontLeft1"}, Word{"connected"}, Word{}, Word{});
  application->Update_SwitchControls(Word{"rearRight1FlapLockState"}, Word{"locked"}, Word{}, trov::Words{});
  const auto post = [&](const char* type, const char* body) { return application->PostTo("switchControls", type, body); };
  EXPECT_EQ(post("frontLeft1PlugLockState", R"({"switchValue":"locked"})"), kInternal);
  EXPECT_EQ(post("rearRight1FlapLockState", R"({"switchValue":"locked"})"), kNotInRange);
  EXPECT_EQ(post("frontLeft1PlugLockState", "{}"), kInternal);
  EXPECT_EQ(post("frontLeft1FlapLockState", R"({"switchValue":"unlocking"})"), kDone);
  EXPECT_EQ(post("rearRight1FlapLockState", R"({"switchValue":"locking"})"), kDone);
  EXPECT_THAT(mediator.asked, ElementsAre("switch frontLeft1FlapLockState unlocking", "switch rearRight1FlapLockState locking"));
}

TEST_F(ClientWrites, PastErrorIsConfirmed) {
  EXPECT_EQ(application->PostTo("pastErrorInformation", "pastErrorInformation2", R"({"confirmedByUser":true})"), kDone);
  EXPECT_THAT(mediator.asked, ElementsAre("past error pastErrorInformation2 true"));
  EXPECT_EQ(application->Object("pastErrorInformation", "pastErrorInformation2")["confirmedByUser"], true);
}

TEST_F(ClientWrites, ResetIsAcceptedAndNeverWritten) {
  const std::string uri = application->Get("/FactoryReset/resets")[0]["uri"];
  EXPECT_EQ(application->Post(uri, R"({"isFactoryDefault":true})"), (Answer{202, "Accepted"}));
  EXPECT_EQ(application->Post(uri, R"({"isFactoryDefault":false})"), kNotInRange);
  mediator.response = SOMEIP_RESPONSE_TYPE::SET_TIMEOUT;
  EXPECT_EQ(application->Post(uri, R"({"isFactoryDefault":true})"), kInternal);
  EXPECT_THAT(mediator.asked, ElementsAre("reset origin", "reset origin"));
  EXPECT_FALSE(application->Get(uri).contains("isFactoryDefault"));
}

}  // namespace
}  // namespace rest_test
