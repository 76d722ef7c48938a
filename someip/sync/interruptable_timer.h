#pragma once

#include <chrono>
#include <condition_variable>
#include <mutex>

namespace trov::someipSync {

/// A waiter that can be stopped once and for ever: after StopWaiting every wait ends at once.
class InterruptableTimer {
 public:
  InterruptableTimer() = default;
  virtual ~InterruptableTimer() = default;
  InterruptableTimer(const InterruptableTimer&) = delete;
  InterruptableTimer& operator=(const InterruptableTimer&) = delete;

  /// True when the whole duration elapsed, false when the wait was stopped.
  virtual bool WaitFor(const std::chrono::seconds& duration);
  /// From any thread.
  virtual void StopWaiting();

 private:
  std::mutex mutex_;  // guards stopped_
  std::condition_variable wake_;
  bool stopped_ = false;
};

}  // namespace trov::someipSync
