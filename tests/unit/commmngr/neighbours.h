#pragma once

#include <gmock/gmock.h>

#include "commmngr/interfaces/trov_listener_interface.h"
#include "commmngr/interfaces/trov_zuva_server_interface.h"

namespace trov::testing {

class MockZuvaServer : public zuvaServer::TROVZuVaServerInterface {
 public:
  MOCK_METHOD(void, Update_Registry, (bool), (override));
  MOCK_METHOD(void, Update_ValueControls, (types::ValueControlsMappedTuple &&), (override));
  MOCK_METHOD(void, Update_SwitchControls, (const Word&, const Word&, const Word&, const Words&), (override));
  MOCK_METHOD(void, Update_ChargingPlugs, (const Word&, const Word&, const Word&, const Word&), (override));
  MOCK_METHOD(void, Update_Views, (const Word&, const Word&, const Word&), (override));
  MOCK_METHOD(void, Update_Notifications, (const Word&, const Word&, const Word&), (override));
  MOCK_METHOD(void, Update_NotificationMarkers, (const Word&, const Opt<bool>&), (override));
  MOCK_METHOD(void, Update_OruUpdateApprovals, (const Word&, const Opt<bool>&), (override));
  MOCK_METHOD(void, Update_chargingProcessInformation, (types::ChargingProcessInformationMappedTuple &&), (override));
  MOCK_METHOD(void, Update_valueIndications, (types::ValueIndicationsMappedTuple &&), (override));
  MOCK_METHOD(void, Update_pastErrorInformation, (const Word&, const Word&, const Word&, const Opt<bool>&), (override));
  MOCK_METHOD(void, Update_resetToFactoryData, (const Word&, const Opt<std::uint64_t>&), (override));
  MOCK_METHOD(void, Update_batteryCareModes, (const Word&, const Word&, const Word&, const Opt<std::uint32_t>&, const Opt<float>&),
              (override));
  MOCK_METHOD(void, Update_batteryPreconditionings, (const Word&, const Word&), (override));
  MOCK_METHOD(void, Update_batteryPreconditioningEnergies, (const Word&, const Opt<std::uint32_t>&, const Opt<std::uint32_t>&), (override));
  MOCK_METHOD(void, Update_BidirectionalChargingModes, (types::BidirectionalChargingModesMappedTuple &&), (override));
  MOCK_METHOD(void, Update_NavTargetSoc, (const std::uint8_t&), (override));
};

class MockListener : public chargingManagementCoreListener::TROVListenerInterface {
 public:
  using Response = enums::SOMEIP_RESPONSE_TYPE;
  MOCK_METHOD(void, StartListener, (), (override));
  MOCK_METHOD(Response, Update_ValueControls,
              (cmc::DT_ChargingManagementCore_valueControls_type, const Opt<std::uint32_t>&,
               const Opt<cmc::DT_ChargingManagementCore_valueControls_specialState>&, const std::string&),
              (override));
  MOCK_METHOD(Response, Update_SwitchControls,
              (cmc::DT_ChargingManagementCore_switchControls_type, const Opt<cmc::DT_ChargingManagementCore_switchControls_switchValue>&),
              (override));
  MOCK_METHOD(Response, Update_Views,
              (cmc::DT_ChargingManagementCore_views_type, const Opt<cmc::DT_ChargingManagementCore_views_content>&,
               const Opt<cmc::DT_ChargingManagementCore_views_visibility>&),
              (override));
  MOCK_METHOD(Response, Update_pastErrorInformation, (cmc::DT_ChargingManagementCore_pastErrorInformation_type, const Opt<bool>&),
              (override));
  MOCK_METHOD(Response, Update_FactoryResetInfo, (cmc::DT_ChargingManagementCore_resetToFactoryData_resetToFactoryData), (override));
};

/// An optional, written shortly.
template <class T>
Opt<T> Some(T value) {
  return Opt<T>{value};
}
inline Word Some(const char* word) {
  return Word{std::string{word}};
}

/// A number of an enumeration that has no word.
template <class E>
Opt<E> Unknown() {
  return static_cast<E>(9999);
}

}  // namespace trov::testing
