#pragma once

#include "binding/incidents/identity.h"
#include "binding/proxy/record_operations.h"
#include "binding/proxy/sample_queue.h"
#include "binding/proxy/service_info.h"
#include "xr/com/client_port.h"

#include <memory>
#include <mutex>
#include <shared_mutex>
#include <vector>

namespace xr::com::cpp_binding::proxy {

/// Is told when a sample has arrived and when the state of the subscription changes; on the transport thread. What an operation throws
/// costs this subscriber this one report.
class Event_subscriber {
 public:
  virtual ~Event_subscriber() = default;
  virtual void on_event_sample() = 0;
  virtual void on_subscription_state_change(Subscription_state state) = 0;
};

/// The transport side of one event: decodes what arrives, keeps the newest samples, tells the subscribers.
///
/// Owned by shared pointers: the transport holds it weakly and keeps it for the time of one call.
class Event_base final : public Event_sink, public std::enable_shared_from_this<Event_base> {
 public:
  /// `id` is the alphabetical index of the field.
  Event_base(unsigned short id, Service_info service, std::shared_ptr<Client_port> port, const Record_operations& operations);

  /// A sample that cannot be decoded, or that the sender marked as faulty, is dropped; the first is an incident.
  void event_updated(std::uint32_t status, const std::vector<unsigned char>& payload) override;
  void event_state_changed(Subscription_state state) override;

  /// Starts delivery to a subscriber, with `wanted` asking the service for the event if nobody did so far. May call the
  /// subscriber before it returns, so its locks are not held.
  void internal_subscribe(const std::shared_ptr<Event_subscriber>& subscriber, bool wanted);

  /// The last one to go gives the event back. Never throws: a subscriber that cannot be taken off the list goes with its object, and ends
  /// its deliveries itself.
  void internal_unsubscribe(const Event_subscriber* subscriber) noexcept;

  void notify_all_subscribers();

  /// Numbers of samples, see `Sample_queue`. Take no lock.
  std::uint64_t oldest() const { return queue_.oldest(); }
  std::uint64_t newest() const { return queue_.newest(); }

  /// `copy_samples_to_cache` out of this event's queue, under its read lock.
  bool copy_samples(Sample_cache& cache, bool replace, std::size_t capacity, std::uint64_t& lastUpdate) const;

  unsigned short id() const { return id_; }
  log::Identity identity() const { return {{service_.name}, port_->instance().value()}; }

 private:
  using Subscribers = std::vector<std::weak_ptr<Event_subscriber>>;
  std::shared_ptr<const Subscribers> subscribers() const;
  template <class Use>
  void for_each_subscriber(Use&& use) const;
  /// Whether none is left.
  bool remove(const Event_subscriber* subscriber);
  /// The list without `gone` and without those that no longer live.
  Subscribers remaining_locked(const Event_subscriber* gone) const;

  const std::shared_ptr<const Subscribers> nobody_ = std::make_shared<Subscribers>();  // kept, so that the last one needs no memory to go
  const unsigned short id_;
  const Service_info service_;
  const std::shared_ptr<Client_port> port_;
  const Record_operations& operations_;

  mutable std::shared_mutex queueMutex_;  // guards queue_; its counters are read without
  Sample_queue queue_;

  std::mutex linkMutex_;  // guards asked_, and puts asking for the event and giving it back in one order
  bool asked_ = false;

  mutable std::mutex subscribersMutex_;  // guards subscribers_; the list itself is replaced, never changed
  std::shared_ptr<const Subscribers> subscribers_ = nobody_;
};

}  // namespace xr::com::cpp_binding::proxy
