#include "binding/generated/charging_management_core_proxy.h"
#include "binding/generated/route_based_energy_contents_proxy.h"
#include "fakes.h"
#include "xr/com/wire/deployment.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

/// Each field of the vehicle that the bridge reads or writes, against bytes and ids written down by hand.
namespace binding_test {
namespace {

using Core = ylt::services::chargingmanagementcore::ChargingManagementCore;
using Route = ylt::services::routebasedenergycontents::RouteBasedEnergyContents;

/// "7002#03" is the member with tag 7002, a reference whose first part is 3 and everything else 0; all other digits stand for themselves.
Bytes Payload(std::string text) {
  for (auto at = text.find('#'); at != text.npos; at = text.find('#')) {
    text.replace(at, 3, " 0000001A 00" + text.substr(at + 1, 2) + " 0000 0000 00000010 00000000000000000000000000000000");
  }
  return OneRecord(text);
}

/// Counts the references of a record through, in the order of its members.
struct Numbering {
  template <class T>
  void operator()(qe::com::optional<T>& member, Tag) {
    if constexpr (requires(T & reference) { reference.idPart1; }) {
      T reference{};
      reference.idPart1 = ++last;
      member = reference;
    }
  }
  std::uint16_t last = 0;
};

struct Ids {
  std::uint16_t index, event, get, set;
};

/// A field on a port of its own. `members` gives the record's values by name; its references are numbered.
template <class F>
struct Checked {
  template <class Members>
  Checked(Ids ids, const char* text, Members&& members) : payload{Payload(text)} {
    const auto deployment = xr::com::wire::default_deployment();
    const auto& deployed = deployment.find_service(F::Service::kName)->fields.at(ids.index);
    EXPECT_EQ(deployed.name, F::kName);
    EXPECT_EQ(F::kIndex, ids.index) << F::kName;
    EXPECT_EQ(deployed.event, ids.event) << F::kName;
    EXPECT_EQ(deployed.get, ids.get) << F::kName;
    EXPECT_EQ(deployed.set.value_or(0), ids.set) << F::kName;
    Numbering numbering;
    record.visit(numbering);
    members(record);
  }

  const Bytes payload;
  typename F::Record record;
  std::shared_ptr<FakePort> port = std::make_shared<FakePort>();
  ara::com::internal::proxy::Field<F> field{port, std::make_shared<HandDriven>()};
};

template <class F, class Members>
void IsRead(Ids ids, const char* payload, Members&& members) {
  Checked<F> checked{ids, payload, members};
  auto future = checked.field.get();
  EXPECT_EQ(checked.port->calls.at(0)->method.field, F::kIndex);
  checked.port->Answer(0, {0, checked.payload});
  EXPECT_EQ(future.get(), std::vector{checked.record}) << F::kName;
}

/// `members` gives all that the vehicle is sent; no reference is.
template <class F, class Members>
void IsWritten(Ids ids, const char* payload, Members&& members) {
  Checked<F> checked{ids, payload, [&members](auto& record) { record = {}, members(record); }};
  const auto future = checked.field.set({checked.record});
  EXPECT_EQ(checked.port->calls.at(0)->method.kind, Method_kind::set);
  EXPECT_EQ(checked.port->calls[0]->request, checked.payload) << F::kName;
}

/// Gives a member, whatever its enumeration or width, a number.
template <class T>
void Put(qe::com::optional<T>& member, std::uint32_t number) {
  member = static_cast<T>(number);
}
template <class T>
void Put(qe::com::optional<std::vector<T>>& member, std::uint32_t first, std::uint32_t second) {
  member = std::vector{static_cast<T>(first), static_cast<T>(second)};
}

constexpr Uuid16 kUuid{1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15, 16};

// clang-format off
TEST(Fields, AreReadFromTheirBytes) {
  IsRead<Core::batteryCareModes>({0, 0x8010, 0x0010, 0}, "2000 00000001 7001#01 2002 00000050 2003 00000004 2004 00000002 7005#02 2006 3FC00000",
      [](auto& r) { Put(r.type, 1), Put(r.chargeBcamThreshold, 80), Put(r.notification, 4), Put(r.popup, 2), r.bcamScoreThreshold = 1.5F; });
  IsRead<Core::batteryPreconditioningEnergies>({1, 0x8011, 0x0011, 0}, "2000 00000001 2001 00000BB8 2002 FFFFFFFF",
      [](auto& r) { Put(r.type, 1), Put(r.firstStop, 3000), Put(r.nextStops, 4294967295U); });
  IsRead<Core::batteryPreconditionings>({2, 0x8012, 0x0012, 0}, "2000 00000001 7001#01 7002#02 2003 00000005 7004#03 7005#04 7006#05",
      [](auto& r) { Put(r.type, 1), Put(r.preconditioningState, 5); });
  IsRead<Core::bidirectionalChargingModes>({3, 0x8013, 0x0013, 0},
      "2000 00000001 2001 00000011 2002 00000003 2003 00000004 7004#01 7005#02 7006#03 2007 3F800000 7008#04 2009 40000000 700A#05 200B 40400000 700C#06 200D 40800000",
      [](auto& r) { Put(r.type, 1), Put(r.information, 17), Put(r.notification, 3), Put(r.chargingMode, 4), r.operatingHoursThreshold = 1.0F,
                    r.numbersOfCyclesThreshold = 2.0F, r.amountOfEnergyThreshold = 3.0F, r.quotaThreshold = 4.0F; });
  IsRead<Core::chargingPlugs>({5, 0x8015, 0x0015, 0}, "2000 00000008 7001#01 7002#02 7006#03 2003 00000007 2004 00000001 2005 00000004",
      [](auto& r) { Put(r.type, 8), Put(r.plugType, 7), Put(r.plugConnectionState, 1), Put(r.infrastructureState, 4); });
  IsRead<Core::chargingProcessInformation>({6, 0x8016, 0x0016, 0},
      "2000 00000001 2001 00000008 2010 00000004 7002#01 2004 0000005A 2011 00000003 7003#02 7005#03 7012#04 7013#05 2006 00000002 2007 00000005 2008 00000006 "
      "7009#06 700A#07 700B#08 700F#09 7014#0A 7015#0B 200C 00000007 700D#0C 700E#0D 7016 00000003 44452A 7017#0E 7018#0F 2019 00000009",
      [](auto& r) { Put(r.type, 1), Put(r.currentChargeState, 8), Put(r.activeTargetSoc, 4), Put(r.chargeBulkThreshold, 90), Put(r.chargeTimeDisplay, 3),
                    Put(r.chargeMode, 2), Put(r.profileChargeReason, 5), Put(r.chargeType, 6), Put(r.chargingScenario, 7), r.evseid = "DE*",
                    Put(r.chargeRateCuteness, 9); });
  IsRead<Core::notificationMarkers>({9, 0x8019, 0x0019, 0}, "2000 00000002 7001#01 7002#02 7003#03 0004 01",
      [](auto& r) { Put(r.type, 2), r.isToBeNotified = true; });
  IsRead<Core::notifications>({10, 0x801A, 0x001A, 0}, "2000 00000005 2001 00000041 2003 00000003 2002 00000002",
      [](auto& r) { Put(r.type, 5), Put(r.value, 65), Put(r.flapSide, 3), Put(r.additionalInformation, 2); });
  IsRead<Core::oruUpdateApprovals>({11, 0x801B, 0x001B, 0}, "2000 00000001 0001 01", [](auto& r) { Put(r.type, 1), r.updateApproval = true; });
  IsRead<Core::pastErrorInformation>({12, 0x801C, 0x001C, 0x004C}, "2000 00000002 2001 00000041 2002 00000003 0003 01",
      [](auto& r) { Put(r.type, 2), Put(r.value, 65), Put(r.additionalInformation, 3), r.confirmedByUser = true; });
  IsRead<Core::resetToFactoryData>({13, 0x801D, 0x001D, 0x004D}, "0000 07 2001 00000001 3002 0000018BCFE56800",
      [](auto& r) { Put(r.elementId, 7), Put(r.resetToFactoryData, 1), r.lastReset = 1700000000000ULL; });
  IsRead<Core::switchControls>({15, 0x801F, 0x001F, 0x004F},
      "7000 00000010 0102030405060708090A0B0C0D0E0F10 2001 00000022 7002 00000008 00000002 00000003 2003 0000000E 2004 0000001E",
      [](auto& r) { r.id = kUuid, Put(r.switchValue, 34), Put(r.switchValueConfiguration, 2, 3),
                    Put(r.restrictionReason, 14), Put(r.type, 30); });
  IsRead<Core::valueControls>({16, 0x8020, 0x0020, 0x0050},
      "7000 00000010 0102030405060708090A0B0C0D0E0F10 2001 00000050 2002 00000064 2003 0000000A 2004 00000001 2005 00000002 2006 00000003 2007 00000005 "
      "2008 0000000E 2009 00000010 200A 00000004 700B 00000008 00000006 00000007",
      [](auto& r) { r.id = kUuid, Put(r.currentValue, 80), Put(r.maxValue, 100), Put(r.minValue, 10),
                    Put(r.unitPercent, 1), Put(r.unitDistance, 2), Put(r.unitTime, 3), Put(r.resolution, 5), Put(r.restrictionReason, 14), Put(r.type, 16),
                    Put(r.specialState, 4), Put(r.specialStateConfiguration, 6, 7); });
  IsRead<Core::valueIndications>({17, 0x8021, 0x0021, 0},
      "7000 00000010 0102030405060708090A0B0C0D0E0F10 2001 C1480000 2002 42C80000 2003 3F800000 7004 00000002 3132 2005 00000001 2006 00000002 2007 00000003 "
      "2008 00000004 2009 00000005 200A 0000000E 200B 00000016 200C 00000006",
      [](auto& r) { r.id = kUuid, r.currentValue = -12.5F, r.maxValue = 100.0F, r.minValue = 1.0F,
                    r.currentTimeDateValue = "12", Put(r.unitPercent, 1), Put(r.unitTime, 2), Put(r.unitSpeed, 3), Put(r.unitPower, 4), Put(r.unitEnergy, 5),
                    Put(r.restrictionReason, 14), Put(r.type, 22), Put(r.unitTemperature, 6); });
  IsRead<Core::views>({18, 0x8022, 0x0022, 0x0052}, "2000 00000002 2001 00000004 2002 00000003",
      [](auto& r) { Put(r.type, 2), Put(r.content, 4), Put(r.visibility, 3); });
  IsRead<Route::targetSocChargings>({4, 0x8014, 0x0014, 0}, "2000 00000001 0001 50", [](auto& r) { Put(r.type, 1), Put(r.targetSoc, 80); });
}

TEST(Fields, AreWrittenInTheirBytes) {
  IsWritten<Core::pastErrorInformation>({12, 0x801C, 0x001C, 0x004C}, "2000 00000002 0003 00", [](auto& r) { Put(r.type, 2), r.confirmedByUser = false; });
  IsWritten<Core::resetToFactoryData>({13, 0x801D, 0x001D, 0x004D}, "2001 00000001", [](auto& r) { Put(r.resetToFactoryData, 1); });
  IsWritten<Core::statistics>({14, 0x801E, 0x001E, 0x004E}, "2000 00000004 2005 00000009 2006 00000003 2007 00000002",
      [](auto& r) { Put(r.statisicsType, 4), Put(r.unit, 9), Put(r.notification, 3), Put(r.confirmendByUser, 2); });
  IsWritten<Core::switchControls>({15, 0x801F, 0x001F, 0x004F}, "2001 00000022 2004 0000001E", [](auto& r) { Put(r.type, 30), Put(r.switchValue, 34); });
  IsWritten<Core::valueControls>({16, 0x8020, 0x0020, 0x0050}, "2001 00000050 2009 00000010 200A 00000000",
      [](auto& r) { Put(r.type, 16), Put(r.currentValue, 80), Put(r.specialState, 0); });
  IsWritten<Core::views>({18, 0x8022, 0x0022, 0x0052}, "2000 00000002 2001 00000004 2002 00000003",
      [](auto& r) { Put(r.type, 2), Put(r.content, 4), Put(r.visibility, 3); });
}
// clang-format on

}  // namespace
}  // namespace binding_test
