#pragma once

#include <array>
#include <string_view>

#include "someip/proxy_wrapper.h"
#include "someip/rbec/route_based_energy_contents_proxy_interface.h"

namespace trov::routeBasedEnergyContents {

using Proxy = ylt::services::routebasedenergycontents::proxy::RouteBasedEnergyContentsProxy;
using TargetSocChargings = someip::Resource<enums::SOMEIP_RESOURCE_TYPE::TargetSocChargings, &Proxy::targetSocChargings, 1>;

/// What makes a wrapper the one of RouteBasedEnergyContents.
struct Service {
  using Proxy = routeBasedEnergyContents::Proxy;
  using Description = ylt::services::routebasedenergycontents::RouteBasedEnergyContents;
  using Interface = RouteBasedEnergyContentsProxyInterface;
  using Resources = someip::ResourceList<TargetSocChargings>;
  using CachedSamples = types::RbecCachedSamplesVariant;
  using GetResult = types::RbecGetResultVariant;

  static constexpr std::array kGetOrder{enums::SOMEIP_RESOURCE_TYPE::TargetSocChargings};
  static constexpr std::string_view kLogContext = "RBEWRP";
  static constexpr std::string_view kLogDescription = "TROV RouteBasedProxy Wrapper";
  static constexpr std::string_view kUpdateUnserved = "[rbewrapper] Update not implemented for this data type.";
  static constexpr someip::WrapperTexts kTexts{
      .updateUnserved = kUpdateUnserved,
      .subscribeUnserved = "[rbewrapper] Subscribe not implemented for this data type.",
      .cachedSamplesUnserved = "[rbewrapper] GetCachedSamples not implemented for this data type.",
      .receiveHandlerUnserved = "[rbewrapper] SetReceiveHandler not implemented for this data type.",
      .cleanupUnserved = kUpdateUnserved,  // on purpose
      .getUnserved = "[rbecwrapper] Get not implemented for this someip data type.",
      .findBegins = "[rbewrapper] RouteBasedEnergyContentsProxyWrapper - StartFindService",
      .findFailed = "[rbewrapper] RouteBasedEnergyContentsProxyWrapper::StartFindService - StartFindService - FAILLED - catch error block",
      .findRuns = "[rbewrapper] RouteBasedEnergyContentsProxyWrapper::StartFindService - StartFindService - STARTED SUCCESSFULLY",
      .findWithoutHandle = "[rbewrapper] RouteBasedEnergyContentsProxyWrapper::StartFindService - Error: ServiceHandlePtr is NULL"};
};

/// The only class that touches the generated proxy of RouteBasedEnergyContents.
class RouteBasedEnergyContentsProxyWrapper final : public someip::ProxyWrapper<Service> {};

}  // namespace trov::routeBasedEnergyContents
