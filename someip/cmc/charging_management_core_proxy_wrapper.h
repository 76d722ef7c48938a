#pragma once

#include <memory>
#include <mutex>
#include <string_view>
#include <tuple>

#include "someip/cmc/charging_management_core_proxy_interface.h"
#include "someip/cmc/resources.h"
#include "someip/proxy_wrapper.h"

namespace trov::chargingManagementCoreListener {

/// What makes a wrapper the one of ChargingManagementCore.
struct Service {
  using Proxy = chargingManagementCoreListener::Proxy;
  using Description = ylt::services::chargingmanagementcore::ChargingManagementCore;
  using Interface = ChargingManagementCoreProxyInterface;
  using Resources = chargingManagementCoreListener::Resources;
  using CachedSamples = types::CachedSamplesVariant;
  using GetResult = types::GetResultVariant;

  static constexpr const auto& kGetOrder = chargingManagementCoreListener::kGetOrder;
  static constexpr std::string_view kLogContext = "PXWRP";
  static constexpr std::string_view kLogDescription = "TROV Proxy Wrapper";
  static constexpr someip::WrapperTexts kTexts{
      .updateUnserved = "[cmcwrapper] Update not implemented for this data type.",
      .subscribeUnserved = "[cmcwrapper] Subscribe not implemented for this data type.",
      .cachedSamplesUnserved = "[cmcwrapper] GetCachedSamples not implemented for this data type.",
      .receiveHandlerUnserved = "[cmcwrapper] SetReceiveHandler not implemented for this data type.",
      .cleanupUnserved = "[cmcwrapper] Cleanup not implemented for this data type.",
      .getUnserved = "[cmcwrapper] Get not implemented for this someip data type.",
      .findBegins = "[cmcwrapper] ChargingManagementCoreProxyWrapper - StartFindService",
      .findFailed = "[cmcwrapper] ChargingManagementCoreProxyWrapper::StartFindService - StartFindService - FAILLED - catch error block",
      .findRuns = "[cmcwrapper] ChargingManagementCoreProxyWrapper::StartFindService - StartFindService - STARTED SUCCESSFULLY",
      .findWithoutHandle = "[cmcwrapper] ChargingManagementCoreProxyWrapper::StartFindService - Error: ServiceHandlePtr is NULL"};
};

/// The only class that touches the generated proxy of ChargingManagementCore.
class ChargingManagementCoreProxyWrapper final : public someip::ProxyWrapper<Service> {
 public:
  ChargingManagementCoreProxyWrapper() = default;

  /// From any thread; several sets of one resource may wait at once.
  /// @throws boost::bad_get for a payload of another resource; whatever the field's set throws at the call.
  bool SomeIp_Set(enums::SOMEIP_RESOURCE_TYPE resource, const types::SetPayloadVariant& payload,
                  const std::chrono::seconds& timeout) override;

 private:
  template <class Row>
  struct PendingSet {
    std::shared_ptr<qe::com::Future<typename Row::Records>> future;
  };
  template <class... Rows>
  using PendingSets = std::tuple<PendingSet<Rows>...>;

  template <class Row>
  bool Set(const typename Row::Record& record, const std::chrono::seconds& timeout);

  std::mutex setFuturesMutex_;  // guards setFutures_; never held while waiting
  // The last set of each resource: its late answer is dropped with it by the next one.
  SettableResources::Of<PendingSets> setFutures_;
};

}  // namespace trov::chargingManagementCoreListener
