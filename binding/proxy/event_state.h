#pragma once

#include "binding/proxy/event_base.h"
#include "xr/com/execution/executor.h"
#include "xr/com/execution/strand.h"

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <mutex>

namespace xr::com::cpp_binding::proxy {

/// The user side of one event, whatever its record type: cache, handlers, and when to run them.
///
/// Held by its `Event_impl` and, while one runs, by a task of the strand. So a running handler may outlive the proxy; `close`
/// sees to it that nothing begins after it. Any thread. Handlers run on the strand, one at a time, with no lock held.
class Event_state final : public Event_subscriber, public std::enable_shared_from_this<Event_state> {
 public:
  using Sample_filter = std::function<bool(const void* sample)>;
  using Receive_handler = std::function<void()>;
  using State_handler = std::function<void(Subscription_state)>;

  Event_state(std::shared_ptr<Event_base> event, std::shared_ptr<Executor> executor);

  void subscribe(std::size_t cacheSize);
  bool update(const Sample_filter& filter = {});
  Sample_cache cached_samples() const;
  void cleanup();
  void set_receive_handler(Receive_handler handler);
  void set_state_handler(State_handler handler);
  Subscription_state subscription_state() const { return subscriptionState_.load(); }
  /// Never throws, since it runs in destructors.
  void close() noexcept;

  void on_event_sample() override;
  void on_subscription_state_change(Subscription_state state) override;

 private:
  bool is_dispatch_due_locked() const;
  void dispatch_sample();
  void dispatch_state();
  void run(const Receive_handler& handler);
  void rearm();

  const std::shared_ptr<Event_base> event_;
  const std::shared_ptr<Strand> strand_;
  std::atomic<Subscription_state> subscriptionState_ = Subscription_state::not_subscribed;

  std::atomic<bool> subscribed_ = false;  // once true it stays so

  mutable std::mutex mutex_;  // guards the members below; before the strand's mutex and the queue's lock
  bool closing_ = false;
  bool linked_ = false;
  bool rearmed_ = false;        // the user is ready for a dispatch
  bool samplePending_ = false;  // a task for a sample waits on the strand
  bool statePending_ = false;   // a task for a state change waits on the strand
  Sample_cache cache_;
  std::size_t capacity_ = 0;
  bool replace_ = false;
  std::uint64_t lastUpdate_ = 0;    // number of the newest sample that an update took
  std::uint64_t lastDispatch_ = 0;  // number of the newest sample when the handler was last dispatched
  // Shared, so that copying one under the mutex runs no foreign code.
  std::shared_ptr<const Receive_handler> receiveHandler_;
  std::shared_ptr<const State_handler> stateHandler_;
};

}  // namespace xr::com::cpp_binding::proxy
