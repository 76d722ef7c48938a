#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

#include "ara/log/testing/capture.h"
#include "tests/unit/rest/application.h"

namespace rest_test {
namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;
using trov::Opt;
using trov::Word;
using trov::Words;

class Updates : public testing::Test {
 protected:
  void View(const Word& type, const Word& content, const Word& visibility = {}) { application->Update_Views(type, content, visibility); }
  std::vector<std::string> Shown() {
    std::vector<std::string> lines;
    for (const auto& view : application->Get("/ChargingManagementCore/views")) {
      lines.push_back(view.value("type", "") + ' ' + view.value("content", "") + ' ' + view.value("visibility", "-"));
    }
    return lines;
  }
  std::string ViewUri() { return application->Get("/ChargingManagementCore/views").at(0).at("uri"); }
  std::size_t Count(const std::string& resource) { return application->Get("/ChargingManagementCore/" + resource).size(); }

  std::unique_ptr<Application> application = Application::Populated();
  ara::log::testing::Capture log;
};

TEST_F(Updates, ViewComesChangesAndGoes) {
  View(Word{"popup"}, Word{"nothing"});
  View(Word{"popup"}, Word{"chargingInformationScreen"}, Word{"noView"});
  View(Word{"popup"}, Word{});
  EXPECT_THAT(Shown(), IsEmpty());
  View(Word{"popup"}, Word{"chargingInformationScreen"}, Word{"newRequest"});
  EXPECT_THAT(log.Lines(), Contains("[ZuVa][SomeIp -> Zuva] Added View object"));
  const auto uri = ViewUri();
  View(Word{"popup"}, Word{"chargingInformationScreen"}, Word{"requestedViewVisible"});
  EXPECT_THAT(Shown(), ElementsAre("popup chargingInformationScreen requestedViewVisible"));
  EXPECT_EQ(ViewUri(), uri);
  View(Word{"popup"}, Word{"chargingInformationScreen"});
  EXPECT_THAT(Shown(), ElementsAre("popup chargingInformationScreen -"));
  View(Word{"popup"}, Word{"nothing"}, Word{"requestedViewVisible"});
  EXPECT_THAT(Shown(), IsEmpty());
  View(Word{"popup"}, Word{"chargingInformationScreen"}, Word{"newRequest"});
  EXPECT_NE(ViewUri(), uri) << "a view that comes back is another element";
  EXPECT_EQ(application->Get(ViewUri())["type"], "popup");
  EXPECT_EQ(application->Status(uri), 404);
}

TEST_F(Updates, BatteryCareScreensAreExchanged) {
  View(Word{"bcamScreen"}, Word{"bcamInformationScreen"}, Word{"newRequest"});
  const auto first = ViewUri();
  View(Word{"bcamScreen"}, Word{"bcamInitialInformationScreen"}, Word{"newRequest"});
  EXPECT_THAT(Shown(), ElementsAre("bcamScreen bcamInitialInformationScreen newRequest"));
  const auto second = ViewUri();
  EXPECT_NE(second, first);
  View(Word{"bcamScreen"}, Word{"bcamInitialInformationScreen"}, Word{"requestedViewVisible"});
  EXPECT_EQ(ViewUri(), second) << "the same screen stays the same element";
  View(Word{"bcamScreen"}, Word{"bcamInformationScreen"}, Word{"visible"});
  EXPECT_THAT(Shown(), IsEmpty()) << "the old screen has gone, and the new one's visibility failed its check";
  EXPECT_THAT(log.Lines(),
              Contains("[ZuVa][SomeIp -> Zuva] Domain error exception caught while updating View object: Unsupported type: visible"));
}

TEST_F(Updates, UnknownViewsStayOut) {
  View(Word{"bcamScreen"}, Word{"somethingNew"}, Word{"newRequest"});
  View(Word{"window"}, Word{"chargingInformationScreen"}, Word{"newRequest"});
  EXPECT_THAT(Shown(), IsEmpty());
  EXPECT_THAT(log.Lines(), ElementsAre("[ZuVa][SomeIp -> Zuva] Domain error exception caught while updating View object: "
                                       "Unsupported type: somethingNew"));
  EXPECT_THROW(View(Word{}, Word{"chargingInformationScreen"}), qe::com::bad_optional_access);
  EXPECT_NO_THROW(View(Word{}, Word{"nothing"})) << "with no view in the list nobody reads the key";
}

TEST_F(Updates, EveryOperationWritesEveryFieldOfItsObject) {
  const auto expect = [&](const char* resource, const char* type, const char* fields) {
    auto written = nlohmann::ordered_json::object();
    const auto object = application->Object(resource, type);
    for (const auto& [name, value] : object.items()) {
      if (name != "id" && name != "name" && name != "uri" && name != "type" && !value.is_object()) written[name] = value;
    }
    EXPECT_EQ(written, nlohmann::ordered_json::parse(fields)) << resource;
  };
  application->Update_Notifications(Word{"chargingNotification2"}, Word{"generalError"}, Word{"other"});
  expect("notifications", "chargingNotification2", R"({"value":"generalError","additionalInformation":"other"})");
  application->Update_NotificationMarkers(Word{"notificationMarker3"}, false);
  expect("notificationMarkers", "notificationMarker3", R"({"isToBeNotified":false})");
  application->Update_OruUpdateApprovals(Word{"oruUpdateApproval"}, true);
  expect("oruUpdateApprovals", "oruUpdateApproval", R"({"updateApproval":true})");
  application->Update_pastErrorInformation(Word{"pastErrorInformation1"}, Word{"generalError"}, Word{"startInhibit"}, false);
  expect("pastErrorInformation", "pastErrorInformation1",
         R"({"value":"generalError","additionalInformation":"startInhibit","confirmedByUser":false})");
  application->Update_batteryCareModes(Word{"batteryCareMode"}, Word{"bcamScoreValueWarning"}, Word{"bcamInformationScreen"}, 100U,
                                       3000.0F);
  expect("batteryCareModes", "batteryCareMode",
         R"({"notification":"bcamScoreValueWarning","popup":"bcamInformationScreen","chargeBcamThreshold":100,"bcamScoreThreshold":3000})");
  application->Update_batteryPreconditionings(Word{"batteryPreconditioning"}, Word{"running"});
  expect("batteryPreconditionings", "batteryPreconditioning", R"({"preconditioningState":"running"})");
  application->Update_batteryPreconditioningEnergies(Word{"batteryPreconditioningEnergy1"}, 0U, 100000U);
  expect("batteryPreconditioningEnergies", "batteryPreconditioningEnergy1", R"({"firstStop":0,"nextStops":100000})");
  application->Update_ValueControls({Word{"bidirectionalChargingModesMinSoc"}, 3000U, 0U, 3000U, Word{"percent"}, Word{"km"}, Word{"h"},
                                     100U, Word{"error"}, Word{"off"}, std::vector<std::string>{"on", "anything"}});
  expect("valueControls", "bidirectionalChargingModesMinSoc",
         R"({"currentValue":3000,"minValue":0,"maxValue":3000,"unitPercent":"percent","unitDistance":"km","unitTime":"h","resolution":100,
             "restrictionReason":"error","specialState":"off","specialStateConfiguration":["off"]})");
  application->Update_valueIndications({Word{"batteryCareModesBcamScore"}, -1000000.0F, 1000000.0F, 0.5F, Word{"any text"}, Word{"percent"},
                                        Word{"min"}, Word{"kmPerHour"}, Word{"kW"}, Word{"kWh"}, Word{"invalid"}});
  expect("valueIndications", "batteryCareModesBcamScore",
         R"({"currentValue":-1000000,"maxValue":1000000,"minValue":0.5,"currentTimeDateValue":"any text","unitPercent":"percent",
             "unitTime":"min","unitSpeed":"kmPerHour","unitPower":"kW","unitEnergy":"kWh","restrictionReason":"invalid"})");
  application->Update_chargingProcessInformation({Word{"chargingProcessInformation"}, Word{"discharging"}, 100U, Word{"extendedStopped"},
                                                  Word{"minSoc"}, Word{"dc"}, Word{"off"}, Word{"targetSoc"},
                                                  Word{"remainingChargeTimeNav"}, Word{"DE*1"}, Word{"unlimited"}});
  expect("chargingProcessInformation", "chargingProcessInformation",
         R"({"currentChargeState":"discharging","chargeBulkThreshold":100,"chargeMode":"extendedStopped","profileChargeReason":"minSoc",
             "chargeType":"dc","chargingScenario":"off","activeTargetSoc":"targetSoc","chargeTimeDisplay":"remainingChargeTimeNav",
             "evseid":"DE*1","chargeRateCuteness":"unlimited"})");
  application->Update_BidirectionalChargingModes({Word{"bidirectionalChargingMode"}, Word{"bidiStoppedUser"}, Word{"maximumQuotaWarning"},
                                                  Word{"discharging"}, 10000.0F, 500.0F, 100000.0F, 1000000.0F});
  expect(
      "bidirectionalChargingModes", "bidirectionalChargingMode",
      R"({"information":"bidiStoppedUser","notification":"maximumQuotaWarning","chargingMode":"discharging","operatingHoursThreshold":10000,
             "numbersOfCyclesThreshold":500,"amountOfEnergyThreshold":100000,"quotaThreshold":1000000})");
  EXPECT_THAT(log.Lines(), IsEmpty());
}

TEST_F(Updates, OneUpdateIsOneEventAndNoneIfNothingChanges) {
  const auto report = [&](std::uint32_t current, const Word& state) {
    TakeTold();
    application->Update_ValueControls({Word{"bidirectionalChargingModesMinSoc"},
                                       current,
                                       0U,
                                       100U,
                                       Word{"percent"},
                                       {},
                                       {},
                                       5U,
                                       {},
                                       state,
                                       std::vector<std::string>{"off"}});
    return TakeTold();
  };
  EXPECT_EQ(report(80, {}), (Told{0, 1, 0}));
  EXPECT_EQ(report(80, {}), (Told{}));
  EXPECT_EQ(report(85, Word{"off"}), (Told{0, 1, 0}));
  EXPECT_EQ(report(90, Word{"on"}), (Told{0, 1, 0})) << "what came before the fault is told";
  View(Word{"popup"}, Word{"chargingInformationScreen"}, Word{"newRequest"});
  EXPECT_EQ(TakeTold(), (Told{1, 0, 0})) << "a view is told whole";
  View(Word{"popup"}, Word{"nothing"});
  EXPECT_EQ(TakeTold(), (Told{0, 0, 1}));
  application->Update_resetToFactoryData(Word{"origin"}, 5U);
  EXPECT_EQ(TakeTold(), (Told{0, 1, 0}));
  application->Update_resetToFactoryData(Word{"origin"}, 5U);
  EXPECT_EQ(TakeTold(), (Told{}));
}

TEST_F(Updates, FirstFailingFieldEndsTheStep) {
  application->Update_batteryCareModes(Word{"batteryCareMode"}, Word{"bcamScoreValueWarning"}, Word{}, 101U, 1.0F);
  application->Update_batteryPreconditioningEnergies(Word{"batteryPreconditioningEnergy1"}, 100001U, 5U);
  application->Update_ValueControls({Word{"bidirectionalChargingModesMinSoc"}, 5U, 3001U, {}, {}, {}, {}, 0U, {}, {}, {}});
  EXPECT_THAT(log.Lines(), ElementsAre("[ZuVa] batteryCareModes - chargeBcamThreshold - Value out of range",
                                       "[ZuVa] batteryPreconditionings - firstStop - Value out of range",
                                       "[ZuVa][SomeIp -> Zuva] Domain error exception caught while updating valueControl object: "
                                       "Value out of range"));
  const auto mode = application->Object("batteryCareModes", "batteryCareMode");
  EXPECT_EQ(mode["notification"], "bcamScoreValueWarning") << "what came before the fault stays";
  EXPECT_FALSE(mode.contains("bcamScoreThreshold"));
  EXPECT_FALSE(application->Object("batteryPreconditioningEnergies", "batteryPreconditioningEnergy1").contains("nextStops"));
  EXPECT_EQ(application->Object("valueControls", "bidirectionalChargingModesMinSoc")["currentValue"], 5);
}

TEST_F(Updates, EmptyOptionalRemovesItsField) {
  const auto process = [&](const Word& evseid) {
    application->Update_chargingProcessInformation({Word{"chargingProcessInformation"}, {}, {}, {}, {}, {}, {}, {}, {}, evseid, {}});
    return application->Object("chargingProcessInformation", "chargingProcessInformation").contains("evseid");
  };
  EXPECT_TRUE(process(Word{"DE*1"}));
  EXPECT_FALSE(process(Word{""})) << "an empty text counts as none";
  application->Update_Notifications(Word{"chargingNotification1"}, Word{"generalError"}, Word{"other"});
  application->Update_Notifications(Word{"chargingNotification1"}, Word{}, Word{"other"});
  EXPECT_FALSE(application->Object("notifications", "chargingNotification1").contains("value"));
}

TEST_F(Updates, KeyIsReadWhereTheListIsWalked) {
  EXPECT_THROW(application->Update_Notifications(Word{}, Word{}, Word{}), qe::com::bad_optional_access);
  EXPECT_NO_THROW(application->Update_Notifications(Word{"chargingNotification9"}, Word{"generalError"}, Word{}));
  EXPECT_NO_THROW(application->Update_valueIndications({}));
  EXPECT_NO_THROW(application->Update_chargingProcessInformation({}));
  EXPECT_THROW(application->Update_ValueControls({}), qe::com::bad_optional_access);
  EXPECT_THAT(log.Lines(), IsEmpty());
}

TEST_F(Updates, NotANumberIsInRange) {
  application->Update_BidirectionalChargingModes({Word{"bidirectionalChargingMode"}, {}, {}, {}, NAN, 500.5F, 1.0F, {}});
  const auto mode = application->Object("bidirectionalChargingModes", "bidirectionalChargingMode");
  EXPECT_TRUE(mode.at("operatingHoursThreshold").is_null());
  EXPECT_FALSE(mode.contains("amountOfEnergyThreshold"));
}

TEST_F(Updates, PlugBringsItsLockControls) {
  application->Update_SwitchControls(Word{"frontLeft1FlapLockState"}, Word{"locked"}, Word{}, Words{});
  const auto controls = Count("switchControls");
  application->Update_ChargingPlugs(Word{"frontLeft1"}, Word{"connected"}, Word{"ready"}, Word{"GbtAc"});
  EXPECT_EQ(Count("switchControls"), controls + 1) << "the flap's control was there, and keeps what it had";
  application->Update_ChargingPlugs(Word{"frontLeft1"}, Word{"disconnected"}, Word{}, Word{"GbtAc"});
  EXPECT_EQ(Count("switchControls"), controls + 1);
  application->Update_SwitchControls(Word{"frontLeft1PlugLockState"}, Word{"unlocked"}, Word{}, Words{});
  const auto plug = application->Object("chargingPlugs", "frontLeft1");
  EXPECT_EQ(plug["flapLockState"]["switchValue"], "locked");
  EXPECT_EQ(plug["plugLockState"]["switchValue"], "unlocked");
  EXPECT_EQ(plug["plugConnectionState"], "disconnected");
  EXPECT_FALSE(plug.contains("infrastructureState"));
}

TEST_F(Updates, ImpossibleTypesLeaveNothingBehind) {
  const auto controls = Count("switchControls");
  EXPECT_THROW(application->Update_ChargingPlugs(Word{"roof"}, Word{"connected"}, Word{}, Word{}), std::domain_error);
  EXPECT_THROW(application->Update_SwitchControls(Word{"roofLock"}, Word{"locked"}, Word{}, Words{}), std::domain_error);
  EXPECT_EQ(Count("chargingPlugs"), 0U);
  EXPECT_EQ(Count("switchControls"), controls);
  application->Update_SwitchControls(Word{"frontFlapState"}, Word{"open"}, Word{}, std::vector<std::string>{"opening", "ajar", "closing"});
  EXPECT_EQ(application->Object("switchControls", "frontFlapState")["switchValue"], "open") << "the lock was given back";
  EXPECT_FALSE(application->Object("switchControls", "frontFlapState").contains("switchValueConfiguration"));
}

TEST_F(Updates, ResetStateFollowsTheVehicle) {
  const auto reset = [&] { return application->Get("/FactoryReset/resets")[0]; };
  application->Update_resetToFactoryData(Word{"origin"}, 0U);
  EXPECT_EQ(reset()["isFactoryDefault"], true);
  const std::string epoch = reset()["lastReset"];
  EXPECT_THAT(epoch, testing::EndsWith("+00:00"));
  application->Update_resetToFactoryData(Word{"notOrigin"}, 86400U);
  EXPECT_EQ(reset()["isFactoryDefault"], false);
  EXPECT_NE(reset()["lastReset"], epoch);
  EXPECT_THAT(log.Lines(), Contains(testing::StartsWith("[Zuva] Updated time : year=19")));
  for (const std::uint64_t beyond : {std::uint64_t{253'500'000'000}, std::uint64_t{67'767'976'233'532'800}, ~std::uint64_t{0}}) {
    application->Update_resetToFactoryData(Word{}, beyond);
    EXPECT_EQ(reset()["lastReset"], "1970-01-01T00:00:00+00:00") << "no date of four digits";
  }
  application->Update_resetToFactoryData(Word{}, {});
  EXPECT_FALSE(reset().contains("lastReset"));
  EXPECT_FALSE(reset().contains("isFactoryDefault"));
}

TEST_F(Updates, NavigationSetsTheEmbeddedControl) {
  application->Update_NavTargetSoc(85);
  const auto option = application->Object("immediateChargingOptions", "immediateChargingOption");
  EXPECT_EQ(option["navTargetSoc"]["currentValue"], 85);
  EXPECT_EQ(application->Object("valueControls", "immediateChargingOptionsNavTargetSoc")["currentValue"], 85);
  Application{}.Update_NavTargetSoc(85);
  EXPECT_THAT(log.Lines(), ElementsAre("[ZuVa][RBEC -> Zuva] Can't find navtargetsoc object. Exiting method."));
}

}  // namespace
}  // namespace rest_test
