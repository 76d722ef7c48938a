#pragma once

#include <chrono>
#include <functional>
#include <vector>

#include "binding/generated/charging_management_core_proxy.h"
#include "binding/proxy/proxy_impl.h"
#include "model/payload_variants.h"
#include "model/resource_types.h"

namespace trov::chargingManagementCoreListener {

/// The ChargingManagementCore service as its listener sees it: a resource is a number, a payload is a variant.
/// The order of the operations is the order of their slots and stays. ProxyWrapper tells threads and failures.
class ChargingManagementCoreProxyInterface {
 public:
  using Handle_type = xr::com::cpp_binding::proxy::Proxy_impl<ylt::services::chargingmanagementcore::ChargingManagementCore>::Handle_type;

  virtual ~ChargingManagementCoreProxyInterface() = default;

  /// `handler` hears the whole list of offered instances whenever it changes. False if the find could not begin.
  virtual bool StartFindService(std::function<void(std::vector<Handle_type>)> handler) = 0;
  /// Moves the samples that wait into the event's cache.
  virtual void Update(enums::SOMEIP_RESOURCE_TYPE resource) = 0;
  virtual void Subscribe(enums::SOMEIP_RESOURCE_TYPE resource) = 0;
  virtual types::CachedSamplesVariant GetCachedSamples(enums::SOMEIP_RESOURCE_TYPE resource) = 0;
  virtual void SetReceiveHandler(enums::SOMEIP_RESOURCE_TYPE resource, std::function<void()> handler) = 0;
  /// Empties the event's cache; copies of it stay valid.
  virtual void Cleanup(enums::SOMEIP_RESOURCE_TYPE resource) = 0;
  /// Sends the gets of all resources and waits for none.
  virtual void PrepareGets() = 0;
  /// The answer to the last prepared get; empty if none came in time. Each prepared get can be taken once.
  virtual types::GetResultVariant SomeIp_Get(enums::SOMEIP_RESOURCE_TYPE resource, const std::chrono::milliseconds& timeout) = 0;
  /// Sends one record and waits. True when the wait timed out; what the vehicle answered is not looked at.
  virtual bool SomeIp_Set(enums::SOMEIP_RESOURCE_TYPE resource, const types::SetPayloadVariant& payload,
                          const std::chrono::seconds& timeout) = 0;
  virtual bool IsProxyNull() = 0;
  virtual void CreateServiceProxy(Handle_type& handle) = 0;
};

}  // namespace trov::chargingManagementCoreListener
