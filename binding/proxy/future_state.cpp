#include "binding/proxy/future_state.h"

#include <future>

namespace qe::com::detail {

void Future_state_base::set_exception(std::exception_ptr exception) {
  satisfy([&] { exception_ = std::move(exception); });
}

void Future_state_base::wait() const {
  std::unique_lock lock{mutex_};
  changed_.wait(lock, [this] { return ready_; });
}

Future_status Future_state_base::wait_for(std::chrono::nanoseconds time) const {
  std::unique_lock lock{mutex_};
  return changed_.wait_for(lock, time, [this] { return ready_; }) ? Future_status::ready : Future_status::timeout;
}

void Future_state_base::rethrow_locked() {
  // Taken out, so that the exception ends on the thread that gets it: the promise's may still hold this state.
  if (exception_) std::rethrow_exception(std::exchange(exception_, nullptr));
}

void Future_state_base::throw_if_ready_locked() const {
  if (ready_) throw std::future_error{std::future_errc::promise_already_satisfied};
}

}  // namespace qe::com::detail
