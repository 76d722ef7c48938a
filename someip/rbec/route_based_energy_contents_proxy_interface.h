#pragma once

#include <chrono>
#include <functional>
#include <vector>

#include "binding/generated/route_based_energy_contents_proxy.h"
#include "binding/proxy/proxy_impl.h"
#include "model/payload_variants.h"
#include "model/resource_types.h"

namespace trov::routeBasedEnergyContents {

/// The RouteBasedEnergyContents service as its listener sees it; nothing of it can be set.
/// The order of the operations is the order of their slots and stays. The meanings are those of ChargingManagementCoreProxyInterface.
class RouteBasedEnergyContentsProxyInterface {
 public:
  using Handle_type =
      xr::com::cpp_binding::proxy::Proxy_impl<ylt::services::routebasedenergycontents::RouteBasedEnergyContents>::Handle_type;

  virtual ~RouteBasedEnergyContentsProxyInterface() = default;

  virtual bool StartFindService(std::function<void(std::vector<Handle_type>)> handler) = 0;
  virtual void Update(enums::SOMEIP_RESOURCE_TYPE resource) = 0;
  virtual void Subscribe(enums::SOMEIP_RESOURCE_TYPE resource) = 0;
  virtual types::RbecCachedSamplesVariant GetCachedSamples(enums::SOMEIP_RESOURCE_TYPE resource) = 0;
  virtual void SetReceiveHandler(enums::SOMEIP_RESOURCE_TYPE resource, std::function<void()> handler) = 0;
  virtual void Cleanup(enums::SOMEIP_RESOURCE_TYPE resource) = 0;
  virtual void PrepareGets() = 0;
  virtual types::RbecGetResultVariant SomeIp_Get(enums::SOMEIP_RESOURCE_TYPE resource, const std::chrono::milliseconds& timeout) = 0;
  virtual bool IsProxyNull() = 0;
  virtual void CreateServiceProxy(Handle_type& handle) = 0;
};

}  // namespace trov::routeBasedEnergyContents
