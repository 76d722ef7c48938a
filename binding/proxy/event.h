#pragma once

#include "binding/proxy/event_base.h"
#include "binding/proxy/event_links.h"
#include "binding/proxy/event_state.h"
#include "binding/proxy/record_operations.h"

#include <cstddef>
#include <functional>
#include <memory>
#include <utility>
#include <vector>

namespace xr::com::cpp_binding::proxy {

/// A proxy's share in the transport side of the event of field `F`.
template <class F>
class Event_ptr {
 public:
  explicit Event_ptr(std::shared_ptr<Event_base> event) : event_{std::move(event)} {}
  const std::shared_ptr<Event_base>& get() const { return event_; }

 private:
  std::shared_ptr<Event_base> event_;
};

/// The event of field `F`: one per service instance, however many proxies the instance has.
template <class F>
class Event {
 public:
  static Event_ptr<F> link(const std::shared_ptr<Client_port>& port) {
    static Event_links links;
    return Event_ptr<F>{links.link(port->instance(), [&] {
      const Service_info service{F::Service::kName, F::Service::kSerialization};
      return std::make_shared<Event_base>(F::kIndex, service, port, Operations_of<typename F::Record>::value);
    })};
  }
};

/// What the user of a proxy has of the event of field `F`.
///
/// A receive handler is dispatched once per re-arm: `subscribe` and `update` re-arm, and after a dispatch no new one comes until
/// `update` was called and a further sample arrives. It runs on the pool, never twice at a time, and may call every operation here.
/// The destructor waits for no handler.
template <class F>
class Event_impl {
 public:
  using Record = typename F::Record;
  using Samples = std::vector<std::shared_ptr<const std::vector<Record>>>;
  using Filter = std::function<bool(const std::vector<Record>& sample)>;

  Event_impl(const std::shared_ptr<Client_port>& port, std::shared_ptr<Executor> executor)
      : state_{std::make_shared<Event_state>(Event<F>::link(port).get(), std::move(executor))} {}
  ~Event_impl() { state_->close(); }
  Event_impl(const Event_impl&) = delete;
  Event_impl& operator=(const Event_impl&) = delete;

  /// Replaces the cache by one for `cacheSize` samples and starts delivery, if that has not been done.
  void subscribe(std::size_t cacheSize) { state_->subscribe(cacheSize); }

  /// Puts the samples that have arrived since the last update in the cache's place. Returns whether there were any.
  /// Before `subscribe` it is an incident and does nothing. Of the samples the cache keeps those that the filter accepts; it is called
  /// with the event's mutex held, so it must not use the event.
  bool update(const Filter& filter = {}) {
    if (!filter) return state_->update();
    return state_->update([&](const void* sample) { return filter(*static_cast<const std::vector<Record>*>(sample)); });
  }

  /// The samples of the last update, in the order of arrival. They live on after `cleanup`.
  Samples get_cached_samples() const {
    const auto cached = state_->cached_samples();
    Samples samples;
    samples.reserve(cached.size());
    for (const auto& sample : cached) samples.push_back(std::static_pointer_cast<const std::vector<Record>>(sample));
    return samples;
  }

  /// Empties the cache.
  void cleanup() { state_->cleanup(); }

  /// Does not dispatch: a sample that came before the handler waits for the next one.
  void set_receive_handler(std::function<void()> handler) { state_->set_receive_handler(std::move(handler)); }
  void set_state_handler(std::function<void(Subscription_state)> handler) { state_->set_state_handler(std::move(handler)); }
  Subscription_state subscription_state() const { return state_->subscription_state(); }

 private:
  const std::shared_ptr<Event_state> state_;
};

}  // namespace xr::com::cpp_binding::proxy
