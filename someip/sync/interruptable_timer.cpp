#include "someip/sync/interruptable_timer.h"

namespace trov::someipSync {

bool InterruptableTimer::WaitFor(const std::chrono::seconds& duration) {
  std::unique_lock lock{mutex_};
  const auto deadline = std::chrono::steady_clock::now() + duration;
  return !wake_.wait_until(lock, deadline, [this] { return stopped_; });
}

void InterruptableTimer::StopWaiting() {
  const std::lock_guard lock{mutex_};
  stopped_ = true;
  wake_.notify_one();
}

}  // namespace trov::someipSync
