#pragma once

#include <ostream>
#include <string>

#include <gmock/gmock.h>
#include <boost/variant/variant.hpp>

#include "commmngr/communications_manager.h"
#include "someip/cmc/charging_management_core_proxy_interface.h"
#include "someip/rbec/route_based_energy_contents_proxy_interface.h"
#include "tests/unit/commmngr/neighbours.h"

// The test framework would print the records inside, which have no text form.
namespace boost {
template <class... T>
void PrintTo(const variant<T...>& payload, std::ostream* out) {
  *out << "alternative " << payload.which();
}
}  // namespace boost

namespace trov::testing {

using Resource = enums::SOMEIP_RESOURCE_TYPE;

/// A handle of an instance that exists in a test only: no proxy can be made from it.
template <class Wrapper>
typename Wrapper::Handle_type Handle(const std::string& instance) {
  return typename Wrapper::Handle_type{{"service", qe::com::runtime::Instance_id{instance}, nullptr}};
}

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

}  // namespace trov::testing
