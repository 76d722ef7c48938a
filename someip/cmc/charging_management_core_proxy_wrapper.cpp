#include "someip/cmc/charging_management_core_proxy_wrapper.h"

#include <future>
#include <utility>

#include <boost/variant/get.hpp>

namespace trov::chargingManagementCoreListener {

bool ChargingManagementCoreProxyWrapper::SomeIp_Set(enums::SOMEIP_RESOURCE_TYPE resource, const types::SetPayloadVariant& payload,
                                                    const std::chrono::seconds& timeout) {
  bool timedOut = true;  // also the answer for a resource that cannot be set
  const bool served = SettableResources::With(resource, [&](auto row) {
    using Row = decltype(row);
    timedOut = Set<Row>(boost::get<typename Row::Record>(payload), timeout);
  });
  if (!served) logger.LogInfo() << "[cmcwrapper] Set not implemented for this data type.";
  return timedOut;
}

template <class Row>
bool ChargingManagementCoreProxyWrapper::Set(const typename Row::Record& record, const std::chrono::seconds& timeout) {
  using Future = qe::com::Future<typename Row::Records>;
  const auto proxy = RequireProxy();
  const auto future = std::make_shared<Future>(((*proxy).*(Row::field)).set(typename Row::Records{record}));
  {
    auto former = future;  // ends here, answered or not: a write that still waits for it has its own share
    const std::lock_guard lock{setFuturesMutex_};
    std::get<PendingSet<Row>>(setFutures_).future.swap(former);
  }
  if (!future->valid()) throw std::future_error{std::future_errc::no_state};
  return future->wait_for(timeout) != qe::com::Future_status::ready;
}

}  // namespace trov::chargingManagementCoreListener
