#include <atomic>
#include <chrono>
#include <future>
#include <memory>
#include <string>
#include <tuple>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "commmngr/communications_manager.h"
#include "tests/unit/commmngr/neighbours.h"

#include "ara/log/testing/capture.h"

namespace trov::testing {
namespace {

using ::testing::_;
using ::testing::ElementsAre;
using ::testing::Eq;
using ::testing::InSequence;
using ::testing::IsEmpty;
using ::testing::SizeIs;

class TowardRest : public ::testing::Test {
 protected:
  TowardRest() { manager.SetZuva(rest); }

  ara::log::testing::Capture log{ara::log::LogLevel::kDebug};
  commMngr::CommunicationsManager manager;
  std::shared_ptr<MockZuvaServer> rest = std::make_shared<::testing::StrictMock<MockZuvaServer>>();
};

TEST_F(TowardRest, AViewIsToldWithEachMemberThatHasAWord) {
  using Type = cmc::DT_ChargingManagementCore_views_type;
  using Content = cmc::DT_ChargingManagementCore_views_content;
  using Visibility = cmc::DT_ChargingManagementCore_views_visibility;
  EXPECT_CALL(*rest, Update_Views(Some("bcamScreen"), Some("bcamInformationScreen"), Some("newRequest")));
  manager.TellZuvaToUpdate_Views(Type::bcamScreen, Content::bcamInformationScreen, Visibility::newRequest);
  EXPECT_THAT(log.Lines(), ElementsAre("[CommMngr][Someip -> Zuva] View [type] {value,mappedvalue} = {1,bcamScreen}",
                                       "[CommMngr][Someip -> Zuva] View [content] {value,mappedvalue} = {3,bcamInformationScreen}",
                                       "[CommMngr][Someip -> Zuva] View [visibility] {value,mappedvalue} = {3,newRequest}"));
}

TEST_F(TowardRest, AnUnknownMemberIsLeftOutSilentlyAndAnUnknownKeyDropsTheElement) {
  using Type = cmc::DT_ChargingManagementCore_views_type;
  using Content = cmc::DT_ChargingManagementCore_views_content;
  using Visibility = cmc::DT_ChargingManagementCore_views_visibility;
  EXPECT_CALL(*rest, Update_Views(Some("popup"), Eq(Word{}), Eq(Word{})));
  manager.TellZuvaToUpdate_Views(Type::popup, Unknown<Content>(), {});
  EXPECT_THAT(log.Lines(), SizeIs(1));
  manager.TellZuvaToUpdate_Views(Unknown<Type>(), Content::nothing, Visibility::noView);
  EXPECT_EQ(log.Lines().back(), "[CommMngr][Someip -> Zuva] Views type invalid");
  EXPECT_THROW(manager.TellZuvaToUpdate_Views({}, {}, {}), qe::com::bad_optional_access);
}

TEST_F(TowardRest, ThreeResourcesHandOnTheirMembersInAnotherOrder) {
  EXPECT_CALL(*rest, Update_ChargingPlugs(Some("front"), Some("connected"), Some("ready"), Some("Typ2Ac")));
  manager.TellZuvaToUpdate_ChargingPlugs(cmc::DT_ChargingManagementCore_chargingPlugs_type::front,
                                         cmc::DT_ChargingManagementCore_chargingPlugs_infrastructureState::ready,
                                         cmc::DT_ChargingManagementCore_chargingPlugs_plugConnectionState::connected,
                                         cmc::DT_ChargingManagementCore_chargingPlugs_plugType::Typ2Ac);
  EXPECT_CALL(*rest, Update_Notifications(Some("chargingNotification1"), Some("generalError"), Some("other")));
  manager.TellZuvaToUpdate_Notifications(cmc::DT_ChargingManagementCore_notifications_type::chargingNotification1,
                                         cmc::DT_ChargingManagementCore_notifications_additionalInformation::other,
                                         cmc::DT_ChargingManagementCore_notifications_value::generalError);
  EXPECT_CALL(*rest, Update_batteryCareModes(Some("batteryCareMode"), Some("bcamScoreValueReached"), Some("bcamInformationScreen"),
                                             Some(80U), Some(12.5F)));
  manager.TellZuvaToUpdate_BatteryCareModes(cmc::DT_ChargingManagementCore_batteryCareModes_type::batteryCareMode, Some(80U),
                                            cmc::DT_ChargingManagementCore_batteryCareModes_notification::bcamScoreValueReached,
                                            cmc::DT_ChargingManagementCore_batteryCareModes_popup::bcamInformationScreen, Some(12.5F));
}

TEST_F(TowardRest, TheOtherPlainResourcesPassNumbersAndFlagsUnchanged) {
  EXPECT_CALL(*rest, Update_NotificationMarkers(Some("notificationMarker2"), Some(false)));
  manager.TellZuvaToUpdate_NotificationMarkers(cmc::DT_ChargingManagementCore_notificationMarkers_type::notificationMarker2, Some(false));
  EXPECT_CALL(*rest, Update_OruUpdateApprovals(Some("oruUpdateApproval"), Eq(Opt<bool>{})));
  manager.TellZuvaToUpdate_OruUpdateApprovals(cmc::DT_ChargingManagementCore_oruUpdateApprovals_type::oruUpdateApproval, {});
  EXPECT_CALL(*rest, Update_pastErrorInformation(Some("pastErrorInformation3"), Some("generalError"), Some("startInhibit"), Some(true)));
  manager.TellZuvaToUpdate_pastErrorInformation(cmc::DT_ChargingManagementCore_pastErrorInformation_type::pastErrorInformation3,
                                                cmc::DT_ChargingManagementCore_pastErrorInformation_value::generalError,
                                                cmc::DT_ChargingManagementCore_pastErrorInformation_additionalInformation::startInhibit,
                                                Some(true));
  EXPECT_EQ(log.Lines().back(), "[CommMngr][Someip -> Zuva] PastErrorInformation [confirmedByUser] value = true");
  EXPECT_CALL(*rest, Update_batteryPreconditionings(Some("batteryPreconditioning"), Some("notPossibleLowSoc")));
  manager.TellZuvaToUpdate_BatteryPreconditionings(
      cmc::DT_ChargingManagementCore_batteryPreconditionings_type::batteryPreconditioning,
      cmc::DT_ChargingManagementCore_batteryPreconditionings_preconditioningState::notPossibleLowSoc);
  const auto before = log.Lines().size();
  EXPECT_CALL(*rest, Update_batteryPreconditioningEnergies(Some("batteryPreconditioningEnergy1"), Some(100001U), Eq(Opt<std::uint32_t>{})));
  manager.TellZuvaToUpdate_BatteryPreconditioningEnergies(
      cmc::DT_ChargingManagementCore_batteryPreconditioningEnergies_type::batteryPreconditioningEnergy1, Some(100001U), {});
  EXPECT_EQ(log.Lines().size(), before) << "no line when all is well";
}

TEST_F(TowardRest, ResetDataHasNoKeyAndIsAlwaysPassedOn) {
  const InSequence order;
  EXPECT_CALL(*rest, Update_resetToFactoryData(Eq(Word{}), Eq(Opt<std::uint64_t>{})));
  EXPECT_CALL(*rest, Update_resetToFactoryData(Some("origin"), Some(std::uint64_t{1} << 40)));
  manager.TellZuvaToUpdate_ResetToFactoryData({}, {});
  manager.TellZuvaToUpdate_ResetToFactoryData(cmc::DT_ChargingManagementCore_resetToFactoryData_resetToFactoryData::origin,
                                              Some(std::uint64_t{1} << 40));
  EXPECT_EQ(log.Lines().back(), "[CommMngr][Someip -> Zuva] Timestamp updated: 1099511627776");
}

struct ConfigurationCase {
  const char* name;
  Opt<std::vector<int>> numbers;
  Words words;
};

class SwitchConfiguration : public TowardRest, public ::testing::WithParamInterface<ConfigurationCase> {};

TEST_P(SwitchConfiguration, KeepsTheVehiclesLength) {
  using Item = cmc::DT_ChargingManagementCore_switchControls_switchValueConfiguration;
  Opt<std::vector<Item>> configuration;
  if (GetParam().numbers) {
    configuration.emplace();
    for (const int number : *GetParam().numbers) configuration->push_back(static_cast<Item>(number));
  }
  EXPECT_CALL(*rest, Update_SwitchControls(Some("frontFlapState"), Some("open"), Some("error"), GetParam().words));
  manager.TellZuvaToUpdate_SwitchControls(cmc::DT_ChargingManagementCore_switchControls_type::frontFlapState,
                                          cmc::DT_ChargingManagementCore_switchControls_restrictionReason::error,
                                          cmc::DT_ChargingManagementCore_switchControls_switchValue::open, configuration);
}

INSTANTIATE_TEST_SUITE_P(
    Lists, SwitchConfiguration,
    ::testing::Values(ConfigurationCase{"Absent", {}, {}}, ConfigurationCase{"Empty", std::vector<int>{}, std::vector<std::string>{}},
                      ConfigurationCase{"UnknownRepeats", std::vector<int>{2, 99, 3}, std::vector<std::string>{"off", "off", "permanent"}},
                      ConfigurationCase{"UnknownFirst", std::vector<int>{99, 3}, std::vector<std::string>{"", "permanent"}}),
    [](const auto& param) { return std::string{param.param.name}; });

// A record of a value control: the raw tuple refers into it.
struct RawControl {
  Opt<cmc::DT_ChargingManagementCore_valueControls_type> type;
  Opt<std::uint32_t> current, least, most, resolution;
  Opt<cmc::DT_ChargingManagementCore_valueControls_unitPercent> percent;
  Opt<cmc::DT_ChargingManagementCore_valueControls_unitDistance> distance;
  Opt<cmc::DT_ChargingManagementCore_valueControls_unitTime> time;
  Opt<cmc::DT_ChargingManagementCore_valueControls_restrictionReason> reason;
  Opt<cmc::DT_ChargingManagementCore_valueControls_specialState> state;
  Opt<std::vector<cmc::DT_ChargingManagementCore_valueControls_specialStateConfiguration>> states;

  types::ValueControlsRawTuple Tuple() const {
    return {type, current, least, most, percent, distance, time, resolution, reason, state, states};
  }
};

types::ValueControlsMappedTuple Sent(MockZuvaServer& rest, commMngr::CommunicationsManager& manager, const RawControl& control) {
  types::ValueControlsMappedTuple sent;
  EXPECT_CALL(rest, Update_ValueControls(_)).WillOnce([&sent](auto&& tuple) { sent = std::move(tuple); });
  manager.TellZuvaToUpdate_ValueControls(control.Tuple());
  return sent;
}

TEST_F(TowardRest, AValueControlCopiesNumbersAndKnowsOneSpecialStateOnly) {
  using State = cmc::DT_ChargingManagementCore_valueControls_specialStateConfiguration;
  RawControl control;
  control.type = cmc::DT_ChargingManagementCore_valueControls_type::immediateActionImmediateActionTime;
  control.current = 4000U;
  control.distance = cmc::DT_ChargingManagementCore_valueControls_unitDistance::miles;
  control.reason = static_cast<cmc::DT_ChargingManagementCore_valueControls_restrictionReason>(2);
  control.states = std::vector{static_cast<State>(7), State::off, static_cast<State>(1)};
  const auto sent = Sent(*rest, manager, control);
  EXPECT_EQ(std::get<0>(sent), Some("immediateActionImmediateActionTime"));
  EXPECT_EQ(std::get<1>(sent), Some(4000U)) << "no range check on this road";
  EXPECT_EQ(std::get<5>(sent), Some("miles"));
  EXPECT_EQ(std::get<8>(sent), Word{}) << "2 has no word";
  EXPECT_EQ(std::get<10>(sent), Words{std::vector<std::string>{"off"}});
  EXPECT_EQ(log.Lines().back(), "[CommMngr][Someip -> Zuva] ValueControl [specialStateConfiguration] {value,mappedvalue} = {7,off}");
  control.states = std::vector<State>{};
  EXPECT_EQ(std::get<10>(Sent(*rest, manager, control)), Words{std::vector<std::string>{}});
  control.states.reset();
  EXPECT_EQ(std::get<10>(Sent(*rest, manager, control)), Words{});
}

TEST_F(TowardRest, AValueIndicationTellsWordsAloneAndDropsAnAbsentTypeWithALine) {
  types::ValueIndicationsRawTuple raw;
  manager.TellZuvaToUpdate_valueIndications(types::ValueIndicationsRawTuple{});
  EXPECT_THAT(log.Lines(), ElementsAre("[CommMngr][Someip -> Zuva] ValueIndication type invalid"));
  std::get<0>(raw) = cmc::DT_ChargingManagementCore_valueIndications_type::chargingProcessInformationChargePower;
  std::get<1>(raw) = 12.5F;
  std::get<4>(raw) = std::string{"2026-11-24T10:00"};
  std::get<8>(raw) = cmc::DT_ChargingManagementCore_valueIndications_unitPower::kW;
  types::ValueIndicationsMappedTuple sent;
  EXPECT_CALL(*rest, Update_valueIndications(_)).WillOnce([&sent](auto&& tuple) { sent = std::move(tuple); });
  manager.TellZuvaToUpdate_valueIndications(std::move(raw));
  EXPECT_EQ(std::get<1>(sent), Some(12.5F));
  EXPECT_EQ(std::get<4>(sent), Some("2026-11-24T10:00"));
  EXPECT_EQ(std::get<8>(sent), Some("kW"));
  EXPECT_EQ(log.Lines().back(), "[CommMngr][Someip -> Zuva] ValueIndication [unitPower] value = kW");
}

TEST_F(TowardRest, TheTwoOtherWideResourcesKeepTheirMembersApart) {
  types::ChargingProcessInformationRawTuple process;
  std::get<0>(process) = cmc::DT_ChargingManagementCore_chargingProcessInformation_type::chargingProcessInformation;
  std::get<2>(process) = 77U;
  std::get<9>(process) = std::string{"DE*1"};
  std::get<10>(process) = Unknown<cmc::DT_ChargingManagementCore_chargingProcessInformation_chargeRateCuteness>();
  types::ChargingProcessInformationMappedTuple sentProcess;
  EXPECT_CALL(*rest, Update_chargingProcessInformation(_)).WillOnce([&](auto&& tuple) { sentProcess = std::move(tuple); });
  manager.TellZuvaToUpdate_chargingProcessInformation(std::move(process));
  EXPECT_EQ(std::get<2>(sentProcess), Some(77U));
  EXPECT_EQ(std::get<9>(sentProcess), Some("DE*1"));
  EXPECT_EQ(std::get<10>(sentProcess), Word{});
  EXPECT_THAT(log.Lines(), IsEmpty());

  const Opt<cmc::DT_ChargingManagementCore_bidirectionalChargingModes_type> type{
      cmc::DT_ChargingManagementCore_bidirectionalChargingModes_type::bidirectionalChargingMode};
  const Opt<cmc::DT_ChargingManagementCore_bidirectionalChargingModes_information> information{
      cmc::DT_ChargingManagementCore_bidirectionalChargingModes_information::bidiStoppedUser};
  const Opt<cmc::DT_ChargingManagementCore_bidirectionalChargingModes_notification> notification;
  const Opt<cmc::DT_ChargingManagementCore_bidirectionalChargingModes_chargingMode> mode{
      cmc::DT_ChargingManagementCore_bidirectionalChargingModes_chargingMode::discharging};
  const Opt<float> none;
  const Opt<float> quota{12.5F};
  types::BidirectionalChargingModesMappedTuple sentMode;
  EXPECT_CALL(*rest, Update_BidirectionalChargingModes(_)).WillOnce([&](auto&& tuple) { sentMode = std::move(tuple); });
  manager.TellZuvaToUpdate_BidirectionalChargingModes({type, information, notification, mode, none, none, none, quota});
  EXPECT_EQ(std::get<1>(sentMode), Some("bidiStoppedUser"));
  EXPECT_EQ(std::get<3>(sentMode), Some("discharging"));
  EXPECT_EQ(std::get<7>(sentMode), quota);
}

TEST_F(TowardRest, TheNavigationTargetKeepsItsLowEightBits) {
  EXPECT_CALL(*rest, Update_NavTargetSoc(44));
  manager.TellZuvaToUpdate_NavTargetSoc(300);
}

// The control that shows the navigation target shares the target's lock; every other control passes meanwhile.
TEST_F(TowardRest, OnlyTheNavigationTargetsOwnControlWaitsForIt) {
  std::promise<void> inside;
  std::promise<void> leave;
  EXPECT_CALL(*rest, Update_NavTargetSoc(_)).WillOnce([&](auto&&) {
    inside.set_value();
    leave.get_future().wait();
  });
  auto target = std::async(std::launch::async, [&] { manager.TellZuvaToUpdate_NavTargetSoc(1); });
  inside.get_future().wait();

  RawControl other;
  other.type = cmc::DT_ChargingManagementCore_valueControls_type::bidirectionalChargingModesMinSoc;
  Sent(*rest, manager, other);

  std::atomic<bool> told{false};
  EXPECT_CALL(*rest, Update_ValueControls(_)).WillOnce([&](auto&&) { told = true; });
  auto control = std::async(std::launch::async, [&] {
    RawControl own;
    own.type = cmc::DT_ChargingManagementCore_valueControls_type::immediateChargingOptionsNavTargetSoc;
    manager.TellZuvaToUpdate_ValueControls(own.Tuple());
  });
  EXPECT_EQ(control.wait_for(std::chrono::milliseconds{50}), std::future_status::timeout);
  EXPECT_FALSE(told);
  leave.set_value();
  control.get();
  target.get();
  EXPECT_TRUE(told);
}

TEST_F(TowardRest, WithoutANeighbourUpdatesAreDroppedInSilence) {
  manager.SetZuva(nullptr);
  manager.TellZuvaToUpdate_Registry(true);
  manager.TellZuvaToUpdate_NavTargetSoc(1);
  manager.TellZuvaToUpdate_ResetToFactoryData({}, {});
}

TEST_F(TowardRest, TheRegistryFlagPassesUnchanged) {
  const InSequence order;
  EXPECT_CALL(*rest, Update_Registry(false));
  EXPECT_CALL(*rest, Update_Registry(true));
  manager.TellZuvaToUpdate_Registry(false);
  manager.TellZuvaToUpdate_Registry(true);
}

}  // namespace
}  // namespace trov::testing
