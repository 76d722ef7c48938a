#include "binding/proxy/event_base.h"

#include "ara/log/logging.h"
#include "binding/incidents/event_incidents.h"
#include "binding/incidents/target.h"
#include "xr/com/loggers.h"

#include <exception>
#include <utility>

namespace xr::com::cpp_binding::proxy {

using com::log::target::Dlt;

Event_base::Event_base(unsigned short id, Service_info service, std::shared_ptr<Client_port> port, const Record_operations& operations)
    : id_{id}, service_{service}, port_{std::move(port)}, operations_{operations} {}

void Event_base::event_updated(std::uint32_t status, const std::vector<unsigned char>& payload) {
  if (status != 0) return;
  Decoded_sample decoded;
  try {
    decoded = operations_.decode(payload, service_.properties);
  } catch (const std::exception& e) {
    Dlt::trace(log::incidents::Event_deserialize_exception{identity(), id_, e.what()});
    return;
  }
  Dlt::trace(log::incidents::Event_update_rx{identity(), id_},
             json::serialization::Payload_data{operations_.write_json, decoded.sample.get()});
  try {
    const std::unique_lock lock{queueMutex_};
    queue_.emplace_sample(std::move(decoded));
  } catch (const std::exception& e) {
    logger().LogWarn() << "Dropped a sample of event " << id_ << ": " << e.what();
    return;
  }
  notify_all_subscribers();
}

void Event_base::event_state_changed(Subscription_state state) {
  for_each_subscriber([state](Event_subscriber& subscriber) { subscriber.on_subscription_state_change(state); });
}

void Event_base::internal_subscribe(const std::shared_ptr<Event_subscriber>& subscriber, bool wanted) {
  const std::lock_guard link{linkMutex_};
  {
    const std::lock_guard lock{subscribersMutex_};
    auto next = remaining_locked(subscriber.get());
    next.push_back(subscriber);
    subscribers_ = std::make_shared<const Subscribers>(std::move(next));
  }
  if (!wanted || asked_) return;
  port_->subscribe(id_, weak_from_this());
  asked_ = true;
}

void Event_base::internal_unsubscribe(const Event_subscriber* subscriber) noexcept {
  const std::lock_guard link{linkMutex_};
  try {
    if (!remove(subscriber) || !asked_) return;
    port_->unsubscribe(id_, this);
    asked_ = false;
  } catch (const std::exception& e) {
    logger().LogWarn() << "Cannot give back event " << id_ << ": " << e.what();
  }
}

bool Event_base::remove(const Event_subscriber* subscriber) {
  const std::lock_guard lock{subscribersMutex_};
  auto rest = remaining_locked(subscriber);
  const bool none = rest.empty();
  subscribers_ = none ? nobody_ : std::make_shared<const Subscribers>(std::move(rest));
  return none;
}

void Event_base::notify_all_subscribers() {
  for_each_subscriber([](Event_subscriber& subscriber) { subscriber.on_event_sample(); });
}

template <class Use>
void Event_base::for_each_subscriber(Use&& use) const {
  const auto list = subscribers();
  for (const auto& subscriber : *list) {
    const auto alive = subscriber.lock();
    if (!alive) continue;
    try {
      use(*alive);
    } catch (const std::exception& e) {  // neither the transport nor the other subscribers are to suffer from it
      logger().LogWarn() << "No dispatch of event " << id_ << ": " << e.what();
    }
  }
}

bool Event_base::copy_samples(Sample_cache& cache, bool replace, std::size_t capacity, std::uint64_t& lastUpdate) const {
  const std::shared_lock lock{queueMutex_};
  return copy_samples_to_cache(cache, replace, capacity, queue_, lastUpdate, queue_.oldest());
}

std::shared_ptr<const Event_base::Subscribers> Event_base::subscribers() const {
  const std::lock_guard lock{subscribersMutex_};
  return subscribers_;
}

Event_base::Subscribers Event_base::remaining_locked(const Event_subscriber* gone) const {
  Subscribers rest;
  for (const auto& subscriber : *subscribers_) {
    const auto alive = subscriber.lock();
    if (alive && alive.get() != gone) rest.push_back(subscriber);
  }
  return rest;
}

}  // namespace xr::com::cpp_binding::proxy
