#pragma once

#include <ostream>

#include <gmock/gmock.h>
#include <boost/variant/variant.hpp>

#include "commmngr/interfaces/comm_mngr_rbec_side_interface.h"
#include "commmngr/interfaces/comm_mngr_someip_side_interface.h"
#include "someip/cmc/charging_management_core_proxy_interface.h"
#include "someip/rbec/route_based_energy_contents_proxy_interface.h"

// The test framework would print the records inside, which have no text form.
namespace boost {
template <class... T>
void PrintTo(const variant<T...>& payload, std::ostream* out) {
  *out << "alternative " << payload.which();
}
}  // namespace boost

namespace trov::testing {

using Resource = enums::SOMEIP_RESOURCE_TYPE;

class MockCmcWrapper : public chargingManagementCoreListener::ChargingManagementCoreProxyInterface {
 public:
  MOCK_METHOD(bool, StartFindService, (std::function<void(std::vector<Handle_type>)>), (override));
  MOCK_METHOD(void, Update, (Resource), (override));
  MOCK_METHOD(void, Subscribe, (Resource), (override));
  MOCK_METHOD(types::CachedSamplesVariant, GetCachedSamples, (Resource), (override));
  MOCK_METHOD(void, SetReceiveHandler, (Resource, std::function<void()>), (override));
  MOCK_METHOD(void, Cleanup, (Resource), (override));
  MOCK_METHOD(void, PrepareGets, (), (override));
  MOCK_METHOD(types::GetResultVariant, SomeIp_Get, (Resource, const std::chrono::milliseconds&), (override));
  MOCK_METHOD(bool, SomeIp_Set, (Resource, const types::SetPayloadVariant&, const std::chrono::seconds&), (override));
  MOCK_METHOD(bool, IsProxyNull, (), (override));
  MOCK_METHOD(void, CreateServiceProxy, (Handle_type&), (override));
};

class MockRbecWrapper : public routeBasedEnergyContents::RouteBasedEnergyContentsProxyInterface {
 public:
  MOCK_METHOD(bool, StartFindService, (std::function<void(std::vector<Handle_type>)>), (override));
  MOCK_METHOD(void, Update, (Resource), (override));
  MOCK_METHOD(void, Subscribe, (Resource), (override));
  MOCK_METHOD(types::RbecCachedSamplesVariant, GetCachedSamples, (Resource), (override));
  MOCK_METHOD(void, SetReceiveHandler, (Resource, std::function<void()>), (override));
  MOCK_METHOD(void, Cleanup, (Resource), (override));
  MOCK_METHOD(void, PrepareGets, (), (override));
  MOCK_METHOD(types::RbecGetResultVariant, SomeIp_Get, (Resource, const std::chrono::milliseconds&), (override));
  MOCK_METHOD(bool, IsProxyNull, (), (override));
  MOCK_METHOD(void, CreateServiceProxy, (Handle_type&), (override));
};

class MockMediator : public commMngr::CommMngrSomeipSideInterface {
 public:
  MOCK_METHOD(void, TellZuvaToUpdate_chargingProcessInformation, (types::ChargingProcessInformationRawTuple &&), (override));
  MOCK_METHOD(void, TellZuvaToUpdate_NotificationMarkers,
              (const Opt<cmc::DT_ChargingManagementCore_notificationMarkers_type>&, const Opt<bool>&), (override));
  MOCK_METHOD(void, TellZuvaToUpdate_Notifications,
              (const Opt<cmc::DT_ChargingManagementCore_notifications_type>&,
               const Opt<cmc::DT_ChargingManagementCore_notifications_additionalInformation>&,
               const Opt<cmc::DT_ChargingManagementCore_notifications_value>&),
              (override));
  MOCK_METHOD(void, TellZuvaToUpdate_OruUpdateApprovals,
              (const Opt<cmc::DT_ChargingManagementCore_oruUpdateApprovals_type>&, const Opt<bool>&), (override));
  MOCK_METHOD(void, TellZuvaToUpdate_pastErrorInformation,
              (const Opt<cmc::DT_ChargingManagementCore_pastErrorInformation_type>&,
               const Opt<cmc::DT_ChargingManagementCore_pastErrorInformation_value>&,
               const Opt<cmc::DT_ChargingManagementCore_pastErrorInformation_additionalInformation>&, const Opt<bool>&),
              (override));
  MOCK_METHOD(void, TellZuvaToUpdate_SwitchControls,
              (const Opt<cmc::DT_ChargingManagementCore_switchControls_type>&,
               const Opt<cmc::DT_ChargingManagementCore_switchControls_restrictionReason>&,
               const Opt<cmc::DT_ChargingManagementCore_switchControls_switchValue>&,
               const Opt<std::vector<cmc::DT_ChargingManagementCore_switchControls_switchValueConfiguration>>&),
              (override));
  MOCK_METHOD(void, TellZuvaToUpdate_valueIndications, (types::ValueIndicationsRawTuple &&), (override));
  MOCK_METHOD(void, TellZuvaToUpdate_Views,
              (const Opt<cmc::DT_ChargingManagementCore_views_type>&, const Opt<cmc::DT_ChargingManagementCore_views_content>&,
               const Opt<cmc::DT_ChargingManagementCore_views_visibility>&),
              (override));
  MOCK_METHOD(void, TellZuvaToUpdate_ResetToFactoryData,
              (const Opt<cmc::DT_ChargingManagementCore_resetToFactoryData_resetToFactoryData>&, const Opt<std::uint64_t>&), (override));
  MOCK_METHOD(void, TellZuvaToUpdate_ValueControls, (types::ValueControlsRawTuple &&), (override));
  MOCK_METHOD(void, TellZuvaToUpdate_Registry, (bool), (override));
  MOCK_METHOD(void, TellZuvaToUpdate_ChargingPlugs,
              (const Opt<cmc::DT_ChargingManagementCore_chargingPlugs_type>&,
               const Opt<cmc::DT_ChargingManagementCore_chargingPlugs_infrastructureState>&,
               const Opt<cmc::DT_ChargingManagementCore_chargingPlugs_plugConnectionState>&,
               const Opt<cmc::DT_ChargingManagementCore_chargingPlugs_plugType>&),
              (override));
  MOCK_METHOD(void, TellZuvaToUpdate_BatteryCareModes,
              (const Opt<cmc::DT_ChargingManagementCore_batteryCareModes_type>&, const Opt<std::uint32_t>&,
               const Opt<cmc::DT_ChargingManagementCore_batteryCareModes_notification>&,
               const Opt<cmc::DT_ChargingManagementCore_batteryCareModes_popup>&, const Opt<float>&),
              (override));
  MOCK_METHOD(void, TellZuvaToUpdate_BatteryPreconditionings,
              (const Opt<cmc::DT_ChargingManagementCore_batteryPreconditionings_type>&,
               const Opt<cmc::DT_ChargingManagementCore_batteryPreconditionings_preconditioningState>&),
              (override));
  MOCK_METHOD(void, TellZuvaToUpdate_BatteryPreconditioningEnergies,
              (const Opt<cmc::DT_ChargingManagementCore_batteryPreconditioningEnergies_type>&, const Opt<std::uint32_t>&,
               const Opt<std::uint32_t>&),
              (override));
  MOCK_METHOD(void, TellZuvaToUpdate_BidirectionalChargingModes, (types::BidirectionalChargingModesRawTuple &&), (override));
};

class MockRbecMediator : public commMngr::CommMngrRBECSideInterface {
 public:
  MOCK_METHOD(void, TellZuvaToUpdate_NavTargetSoc, (const std::uint32_t&), (override));
  MOCK_METHOD(enums::SOMEIP_RESPONSE_TYPE, TellSomeIpToUpdate_NavTargetSoc, (const std::uint32_t&), (override));
};

}  // namespace trov::testing
