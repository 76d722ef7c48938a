#include "binding/proxy/event_state.h"

#include "binding/incidents/event_incidents.h"
#include "binding/incidents/target.h"
#include "xr/com/execution/deadline_guard.h"

#include <utility>

namespace xr::com::cpp_binding::proxy {
namespace {

using com::log::target::Dlt;
namespace incidents = log::incidents;

constexpr unsigned long kHandlerDeadline = 250;  // milliseconds

template <class Handler>
std::shared_ptr<const Handler> shared(Handler handler) {
  if (!handler) return nullptr;
  return std::make_shared<const Handler>(std::move(handler));
}

}  // namespace

Event_state::Event_state(std::shared_ptr<Event_base> event, std::shared_ptr<Executor> executor)
    : event_{std::move(event)}, strand_{std::make_shared<Strand>(std::move(executor))} {}

void Event_state::subscribe(std::size_t cacheSize) {
  Sample_cache released;
  std::unique_lock lock{mutex_};
  cache_.swap(released);
  cache_.reserve(cacheSize);
  capacity_ = cacheSize;
  replace_ = true;
  subscribed_ = true;
  rearmed_ = true;
  if (linked_ || closing_) return;

  // Unlocked, since the service's present value may arrive at once.
  lock.unlock();
  event_->internal_subscribe(shared_from_this(), true);
  const auto newest = event_->newest();
  lock.lock();
  if (closing_) {
    lock.unlock();
    event_->internal_unsubscribe(this);
    return;
  }
  linked_ = true;
  const auto oldest = event_->oldest();
  // Of the samples that are there already, kept for another proxy of the same instance, only the newest still counts as new.
  lastUpdate_ = lastDispatch_ = oldest >= newest ? oldest : newest - 1;
  lock.unlock();
  on_event_sample();
}

bool Event_state::update(const Sample_filter& filter) {
  // The transport thread waits for the mutex, so incidents are written before it is taken, and old samples end after it is released.
  if (!subscribed_) {
    Dlt::trace(incidents::Event_update_when_not_subscribed{event_->identity(), event_->id()});
    return false;
  }
  Dlt::trace(incidents::Event_cache_update{event_->identity(), event_->id()});
  Sample_cache released;
  const std::lock_guard lock{mutex_};
  rearmed_ = true;
  if (replace_) released.swap(cache_);
  const bool any = event_->copy_samples(cache_, replace_, capacity_, lastUpdate_);
  if (filter) std::erase_if(cache_, [&](const Any_sample& sample) { return !filter(sample.get()); });
  return any;
}

Sample_cache Event_state::cached_samples() const {
  const std::lock_guard lock{mutex_};
  return cache_;
}

void Event_state::cleanup() {
  Sample_cache released;
  const std::lock_guard lock{mutex_};
  if (subscribed_) cache_.swap(released);
}

void Event_state::set_receive_handler(Receive_handler handler) {
  auto next = shared(std::move(handler));
  const std::lock_guard lock{mutex_};
  receiveHandler_.swap(next);
}

void Event_state::set_state_handler(State_handler handler) {
  auto next = shared(std::move(handler));
  const std::lock_guard lock{mutex_};
  stateHandler_.swap(next);
}

void Event_state::close() noexcept {
  std::shared_ptr<const Receive_handler> receiveHandler;
  std::shared_ptr<const State_handler> stateHandler;
  Sample_cache released;
  {
    const std::lock_guard lock{mutex_};
    closing_ = true;
    receiveHandler.swap(receiveHandler_);
    stateHandler.swap(stateHandler_);
    released.swap(cache_);
  }
  strand_->close();
  event_->internal_unsubscribe(this);
}

void Event_state::on_event_sample() {
  const std::lock_guard lock{mutex_};
  // A task that waits already looks at the newest sample itself.
  if (samplePending_ || !is_dispatch_due_locked()) return;
  // The flag follows the post: if that throws, the next sample tries again. The task cannot overtake it, since it takes the mutex.
  strand_->post([weak = weak_from_this()] {
    if (const auto self = weak.lock()) self->dispatch_sample();
  });
  samplePending_ = true;
}

void Event_state::on_subscription_state_change(Subscription_state state) {
  subscriptionState_.store(state);
  const std::lock_guard lock{mutex_};
  if (closing_ || statePending_) return;
  strand_->post([weak = weak_from_this()] {
    if (const auto self = weak.lock()) self->dispatch_state();
  });
  statePending_ = true;  // after the post, as with samples
}

bool Event_state::is_dispatch_due_locked() const {
  if (closing_ || !linked_ || !receiveHandler_ || !rearmed_) return false;
  const auto newest = event_->newest();
  return newest != lastUpdate_ && newest != lastDispatch_;
}

void Event_state::dispatch_sample() {
  std::shared_ptr<const Receive_handler> handler;
  {
    const std::lock_guard lock{mutex_};
    samplePending_ = false;
    if (!is_dispatch_due_locked()) return;
    lastDispatch_ = event_->newest();
    handler = receiveHandler_;
    rearmed_ = false;
  }
  run(*handler);
}

void Event_state::run(const Receive_handler& handler) {
  const auto identity = event_->identity();
  Dlt::trace(incidents::Event_receive_handler{identity, event_->id()});
  const Deadline_guard guard{kHandlerDeadline, [&](unsigned long time) {
                               Dlt::trace(incidents::Event_receive_handler_performance{identity, event_->id(), time});
                             }};
  try {
    handler();
  } catch (...) {  // whatever it was, it ends here: the strand serves the next sample
    Dlt::trace(incidents::Event_receive_handler_exception{identity, event_->id()});
    rearm();  // the handler may have failed before its update, and would never be called again
  }
}

void Event_state::rearm() {
  const std::lock_guard lock{mutex_};
  rearmed_ = true;
}

void Event_state::dispatch_state() {
  std::shared_ptr<const State_handler> handler;
  {
    const std::lock_guard lock{mutex_};
    statePending_ = false;
    if (closing_) return;
    handler = stateHandler_;
  }
  if (!handler) return;
  try {
    (*handler)(subscriptionState_.load());
  } catch (...) {  // as with samples
    Dlt::trace(incidents::Event_state_handler_exception{event_->identity(), event_->id()});
  }
}

}  // namespace xr::com::cpp_binding::proxy
