#include <gmock/gmock.h>
#include <gtest/gtest.h>

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
  std::size_t Count(const std::string& resource) { return application->Get("/ChargingManagementCore/" + resource).size(); }

  std::unique_ptr<Application> application = Application::Populated();
  ara::log::testing::Capture log;
};

TEST_F(Updates, AnExchangeThatFailsLeavesNoScreen) {
  View(Word{"bcamScreen"}, Word{"bcamInitialInformationScreen"}, Word{"newRequest"});
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

TEST_F(Updates, KeyIsReadWhereTheListIsWalked) {
  EXPECT_THROW(application->Update_Notifications(Word{}, Word{}, Word{}), qe::com::bad_optional_access);
  EXPECT_NO_THROW(application->Update_Notifications(Word{"chargingNotification9"}, Word{"generalError"}, Word{}));
  EXPECT_NO_THROW(application->Update_valueIndications({}));
  EXPECT_NO_THROW(application->Update_chargingProcessInformation({}));
  EXPECT_THROW(application->Update_ValueControls({}), qe::com::bad_optional_access);
  EXPECT_THAT(log.Lines(), IsEmpty());
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

TEST_F(Updates, ADateBeyondTheCalendarIsNoResult) {
  for (const std::uint64_t beyond : {std::uint64_t{253'500'000'000}, std::uint64_t{67'767'976'233'532'800}, ~std::uint64_t{0}}) {
    application->Update_resetToFactoryData(Word{}, beyond);
    EXPECT_EQ(application->Get("/FactoryReset/resets")[0]["lastReset"], "1970-01-01T00:00:00+00:00") << "no date of four digits";
  }
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
