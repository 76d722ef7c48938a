#pragma once

#include <chrono>
#include <functional>
#include <future>
#include <memory>
#include <tuple>
#include <utility>
#include <vector>

#include "binding/incidents/field_incidents.h"
#include "binding/incidents/target.h"
#include "binding/proxy/future.h"
#include "binding/proxy/proxy_impl.h"
#include "model/guarded.h"
#include "model/resource_types.h"
#include "someip/resource.h"
#include "someip/texts.h"

#include "ara/log/logging.h"
#include "xr/com/exceptions.h"
#include "xr/com/find_service_handle.h"
#include "xr/com/loggers.h"

namespace trov::someip {

/// What the wrappers of both services share: the generic vocabulary (a resource's number, a variant) turned into the proxy's typed fields.
/// `Service` names the proxy, the interface, the resources, the variants and the texts.
///
/// Threads: CreateServiceProxy, SetReceiveHandler and Subscribe on the find thread; Update, GetCachedSamples and Cleanup on the event's
/// strand; PrepareGets and SomeIp_Get on one thread at a time. Whatever the proxy or a future throws leaves; an unserved resource is one
/// log line.
template <class Service>
class ProxyWrapper : public Service::Interface {
 public:
  using Proxy = typename Service::Proxy;
  using Description = typename Service::Description;
  using Runtime = xr::com::cpp_binding::proxy::Proxy_impl<Description>;
  using Handle_type = typename Runtime::Handle_type;
  using CachedSamples = typename Service::CachedSamples;
  using GetResult = typename Service::GetResult;
  using Resources = typename Service::Resources;

  bool StartFindService(std::function<void(std::vector<Handle_type>)> handler) override {
    logger.LogInfo() << Service::kTexts.findBegins;
    bool started = false;
    try {
      auto kept = handler;
      findServiceHandler.swap(kept);  // the earlier handler dies only when the new one is in place
      auto handle = Runtime::start_find_service(std::move(handler), kAnyInstance, ara::com::logger());
      xr::com::log::target::Dlt::trace(ara::com::log::incidents::Find_service_start{Description::kName, kAnyInstance});
      serviceHandlePtr = std::make_unique<xr::com::cpp_binding::Find_service_handle>(std::move(handle));
      started = true;
    } catch (...) {  // whatever it was, the caller is told by the result
      logger.LogInfo() << Service::kTexts.findFailed;
    }
    if (!serviceHandlePtr) {
      logger.LogInfo() << Service::kTexts.findWithoutHandle;
      return false;
    }
    // A failed repeat over an earlier handle says this too, on purpose.
    logger.LogInfo() << Service::kTexts.findRuns;
    return started;
  }

  void Update(enums::SOMEIP_RESOURCE_TYPE resource) override {
    WithEvent(resource, Service::kTexts.updateUnserved, [](auto&, auto& event) { event.update(); });
  }

  void Subscribe(enums::SOMEIP_RESOURCE_TYPE resource) override {
    WithEvent(resource, Service::kTexts.subscribeUnserved, [this](auto row, auto& event) {
      xr::com::log::target::Dlt::trace(
          ara::com::log::incidents::Field_subscribe{Description::kName, RequireProxy()->instance(), decltype(row)::Description::kIndex});
      event.subscribe(row.cacheSize);
    });
  }

  CachedSamples GetCachedSamples(enums::SOMEIP_RESOURCE_TYPE resource) override {
    CachedSamples samples;
    WithEvent(resource, Service::kTexts.cachedSamplesUnserved, [&samples](auto&, auto& event) { samples = event.get_cached_samples(); });
    return samples;
  }

  void SetReceiveHandler(enums::SOMEIP_RESOURCE_TYPE resource, std::function<void()> handler) override {
    WithEvent(resource, Service::kTexts.receiveHandlerUnserved,
              [&handler](auto&, auto& event) { event.set_receive_handler(std::move(handler)); });
  }

  void Cleanup(enums::SOMEIP_RESOURCE_TYPE resource) override {
    WithEvent(resource, Service::kTexts.cleanupUnserved, [](auto&, auto& event) { event.cleanup(); });
  }

  void PrepareGets() override {
    const auto proxy = RequireProxy();
    for (const auto resource : Service::kGetOrder) {
      Resources::With(resource, [&](auto row) {
        using Row = decltype(row);
        auto& pending = std::get<PendingGet<Row>>(getFutures_);
        pending.future = std::make_unique<qe::com::Future<typename Row::Records>>(((*proxy).*(row.field)).get());
      });
    }
  }

  GetResult SomeIp_Get(enums::SOMEIP_RESOURCE_TYPE resource, const std::chrono::milliseconds& timeout) override {
    GetResult result;
    const bool served = Resources::With(resource, [&](auto row) {
      using Row = decltype(row);
      auto& future = std::get<PendingGet<Row>>(getFutures_).future;
      if (!future || !future->valid()) throw std::future_error{std::future_errc::no_state};
      result = future->wait_for(timeout) == qe::com::Future_status::ready ? future->get() : typename Row::Records{};
    });
    if (!served) logger.LogInfo() << Service::kTexts.getUnserved;
    return result;
  }

  bool IsProxyNull() override { return serviceProxy.Get() == nullptr; }

  void CreateServiceProxy(Handle_type& handle) override { serviceProxy.Set(std::make_shared<Proxy>(handle)); }

 protected:
  ProxyWrapper() : logger{ara::log::CreateLogger(std::string{Service::kLogContext}, std::string{Service::kLogDescription})} {}

  /// @throws xr::com::Service_not_available_exception before CreateServiceProxy.
  std::shared_ptr<Proxy> RequireProxy() const {
    auto proxy = serviceProxy.Get();
    if (!proxy) throw xr::com::Service_not_available_exception{};
    return proxy;
  }

 private:
  static constexpr const char* kAnyInstance = "*";

  template <class Row>
  struct PendingGet {
    std::unique_ptr<qe::com::Future<typename Row::Records>> future;
  };
  template <class... Rows>
  using PendingGets = std::tuple<PendingGet<Rows>...>;

  template <class Use>
  void WithEvent(enums::SOMEIP_RESOURCE_TYPE resource, std::string_view unserved, Use&& use) {
    const bool served = Resources::With(resource, [&](auto row) {
      const auto proxy = RequireProxy();
      use(row, ((*proxy).*(row.field)).event());
    });
    if (!served) logger.LogInfo() << unserved;
  }

  std::function<void(std::vector<Handle_type>)> findServiceHandler;
  // Made on the find thread, read by all: made once, never dropped before the wrapper.
  Guarded<Proxy> serviceProxy;
  std::unique_ptr<xr::com::cpp_binding::Find_service_handle> serviceHandlePtr;

 protected:
  ara::log::Logger& logger;

 private:
  // Replaced, not reset, by the next PrepareGets: an answer that comes later is dropped with its future.
  typename Resources::template Of<PendingGets> getFutures_;
};

}  // namespace trov::someip
