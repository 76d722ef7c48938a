#include <atomic>
#include <chrono>
#include <functional>
#include <future>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "commmngr/communications_manager.h"
#include "model/records_charging_management_core.h"
#include "tests/support/wait_for.h"
#include "tests/unit/commmngr/neighbours.h"
#include "tests/unit/commmngr/sleeping_thread.h"

namespace trov::testing {
namespace {

using commMngr::CommunicationsManager;
using Rest = ::testing::NiceMock<MockZuvaServer>;
using Enter = const std::function<void()>&;

/// One kind of update: how it is told, and how it shows at the REST side.
struct Kind {
  const char* name;
  void (*tell)(CommunicationsManager&);
  void (*onEnter)(Rest&, Enter);
};

/// The first word of each type will do.
template <class E>
Opt<E> First() {
  return static_cast<E>(0);
}

void TellControl(CommunicationsManager& m, cmc::DT_ChargingManagementCore_valueControls_type control) {
  const cmc::DT_valueControls_struct r;
  const Opt<cmc::DT_ChargingManagementCore_valueControls_type> type{control};
  m.TellZuvaToUpdate_ValueControls({type, r.currentValue, r.minValue, r.maxValue, r.unitPercent, r.unitDistance, r.unitTime, r.resolution,
                                    r.restrictionReason, r.specialState, r.specialStateConfiguration});
}

void TellMode(CommunicationsManager& m) {
  const cmc::DT_bidirectionalChargingModes_struct r;
  const auto type = First<cmc::DT_ChargingManagementCore_bidirectionalChargingModes_type>();
  m.TellZuvaToUpdate_BidirectionalChargingModes({type, r.information, r.notification, r.chargingMode, r.operatingHoursThreshold,
                                                 r.numbersOfCyclesThreshold, r.amountOfEnergyThreshold, r.quotaThreshold});
}

template <class Tuple, class E>
Tuple OfType() {
  Tuple tuple;
  std::get<0>(tuple) = First<E>();
  return tuple;
}

// clang-format off
const std::vector<Kind> kKinds{
    {"views", [](auto& m) { m.TellZuvaToUpdate_Views(First<cmc::DT_ChargingManagementCore_views_type>(), {}, {}); },
     [](auto& r, Enter enter) { ON_CALL(r, Update_Views).WillByDefault([enter](auto&&...) { enter(); }); }},
    {"notifications", [](auto& m) { m.TellZuvaToUpdate_Notifications(First<cmc::DT_ChargingManagementCore_notifications_type>(), {}, {}); },
     [](auto& r, Enter enter) { ON_CALL(r, Update_Notifications).WillByDefault([enter](auto&&...) { enter(); }); }},
    {"markers", [](auto& m) { m.TellZuvaToUpdate_NotificationMarkers(First<cmc::DT_ChargingManagementCore_notificationMarkers_type>(), {}); },
     [](auto& r, Enter enter) { ON_CALL(r, Update_NotificationMarkers).WillByDefault([enter](auto&&...) { enter(); }); }},
    {"approvals", [](auto& m) { m.TellZuvaToUpdate_OruUpdateApprovals(First<cmc::DT_ChargingManagementCore_oruUpdateApprovals_type>(), {}); },
     [](auto& r, Enter enter) { ON_CALL(r, Update_OruUpdateApprovals).WillByDefault([enter](auto&&...) { enter(); }); }},
    {"past errors", [](auto& m) { m.TellZuvaToUpdate_pastErrorInformation(First<cmc::DT_ChargingManagementCore_pastErrorInformation_type>(), {}, {}, {}); },
     [](auto& r, Enter enter) { ON_CALL(r, Update_pastErrorInformation).WillByDefault([enter](auto&&...) { enter(); }); }},
    {"battery care", [](auto& m) { m.TellZuvaToUpdate_BatteryCareModes(First<cmc::DT_ChargingManagementCore_batteryCareModes_type>(), {}, {}, {}, {}); },
     [](auto& r, Enter enter) { ON_CALL(r, Update_batteryCareModes).WillByDefault([enter](auto&&...) { enter(); }); }},
    {"preconditionings", [](auto& m) { m.TellZuvaToUpdate_BatteryPreconditionings(First<cmc::DT_ChargingManagementCore_batteryPreconditionings_type>(), {}); },
     [](auto& r, Enter enter) { ON_CALL(r, Update_batteryPreconditionings).WillByDefault([enter](auto&&...) { enter(); }); }},
    {"energies", [](auto& m) { m.TellZuvaToUpdate_BatteryPreconditioningEnergies(First<cmc::DT_ChargingManagementCore_batteryPreconditioningEnergies_type>(), {}, {}); },
     [](auto& r, Enter enter) { ON_CALL(r, Update_batteryPreconditioningEnergies).WillByDefault([enter](auto&&...) { enter(); }); }},
    {"plugs", [](auto& m) { m.TellZuvaToUpdate_ChargingPlugs(First<cmc::DT_ChargingManagementCore_chargingPlugs_type>(), {}, {}, {}); },
     [](auto& r, Enter enter) { ON_CALL(r, Update_ChargingPlugs).WillByDefault([enter](auto&&...) { enter(); }); }},
    {"reset", [](auto& m) { m.TellZuvaToUpdate_ResetToFactoryData({}, {}); },
     [](auto& r, Enter enter) { ON_CALL(r, Update_resetToFactoryData).WillByDefault([enter](auto&&...) { enter(); }); }},
    {"switches", [](auto& m) { m.TellZuvaToUpdate_SwitchControls(First<cmc::DT_ChargingManagementCore_switchControls_type>(), {}, {}, {}); },
     [](auto& r, Enter enter) { ON_CALL(r, Update_SwitchControls).WillByDefault([enter](auto&&...) { enter(); }); }},
    {"controls", [](auto& m) { TellControl(m, cmc::DT_ChargingManagementCore_valueControls_type::immediateChargingOptionsTargetSoc); },
     [](auto& r, Enter enter) { ON_CALL(r, Update_ValueControls).WillByDefault([enter](auto&&...) { enter(); }); }},
    {"indications", [](auto& m) { m.TellZuvaToUpdate_valueIndications(OfType<types::ValueIndicationsRawTuple, cmc::DT_ChargingManagementCore_valueIndications_type>()); },
     [](auto& r, Enter enter) { ON_CALL(r, Update_valueIndications).WillByDefault([enter](auto&&...) { enter(); }); }},
    {"process", [](auto& m) { m.TellZuvaToUpdate_chargingProcessInformation(OfType<types::ChargingProcessInformationRawTuple, cmc::DT_ChargingManagementCore_chargingProcessInformation_type>()); },
     [](auto& r, Enter enter) { ON_CALL(r, Update_chargingProcessInformation).WillByDefault([enter](auto&&...) { enter(); }); }},
    {"modes", TellMode,
     [](auto& r, Enter enter) { ON_CALL(r, Update_BidirectionalChargingModes).WillByDefault([enter](auto&&...) { enter(); }); }},
    {"navigation", [](auto& m) { m.TellZuvaToUpdate_NavTargetSoc(1); },
     [](auto& r, Enter enter) { ON_CALL(r, Update_NavTargetSoc).WillByDefault([enter](auto&&...) { enter(); }); }},
};
// clang-format on

TEST(MediatorLocks, UpdatesOfOneKindPassOneAfterAnotherAndHoldUpNoOtherKind) {
  for (const auto& kind : kKinds) {
    std::promise<void> inside, leave;
    std::atomic<int> entered{0};
    const auto rest = std::make_shared<Rest>();
    kind.onEnter(*rest, [&] {
      if (++entered > 1) return;
      inside.set_value();
      leave.get_future().wait();
    });
    CommunicationsManager manager;
    manager.SetZuva(rest);
    auto first = std::async(std::launch::async, [&] { kind.tell(manager); });
    inside.get_future().wait();
    const WatchedThread second{[&] { kind.tell(manager); }};
    auto others = std::async(std::launch::async, [&] {
      manager.TellZuvaToUpdate_Registry(true);
      for (const auto& other : kKinds)
        if (other.name != kind.name) other.tell(manager);
    });
    EXPECT_EQ(others.wait_for(std::chrono::seconds{10}), std::future_status::ready) << kind.name << " held up another kind";
    EXPECT_TRUE(test_support::WaitFor([&] { return second.Sleeps() || entered > 1; }));
    EXPECT_EQ(entered, 1) << "two of " << kind.name << " at once";
    leave.set_value();
    first.get();
  }
}

// The control that shows the navigation's target shares the target's lock; every other control passes meanwhile.
TEST(MediatorLocks, OnlyTheNavigationTargetsOwnControlWaitsForIt) {
  using Type = cmc::DT_ChargingManagementCore_valueControls_type;
  std::promise<void> inside, leave;
  std::atomic<int> controls{0};
  const auto rest = std::make_shared<Rest>();
  ON_CALL(*rest, Update_ValueControls).WillByDefault([&](auto&&) { ++controls; });
  ON_CALL(*rest, Update_NavTargetSoc).WillByDefault([&](auto&&) {
    inside.set_value();
    leave.get_future().wait();
  });
  CommunicationsManager manager;
  manager.SetZuva(rest);
  auto target = std::async(std::launch::async, [&] { manager.TellZuvaToUpdate_NavTargetSoc(1); });
  inside.get_future().wait();
  TellControl(manager, Type::bidirectionalChargingModesMinSoc);
  const WatchedThread own{[&] { TellControl(manager, Type::immediateChargingOptionsNavTargetSoc); }};
  EXPECT_TRUE(test_support::WaitFor([&] { return own.Sleeps() || controls > 1; }));
  EXPECT_EQ(controls, 1);
  leave.set_value();
  target.get();
}

}  // namespace
}  // namespace trov::testing
