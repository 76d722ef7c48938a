#pragma once

#include <atomic>
#include <chrono>
#include <memory>
#include <thread>
#include <vector>

#include "someip/abstract_get_futures.h"
#include "someip/sync/interruptable_timer.h"

#include "ara/log/logging.h"

namespace trov::someipSync {

/// Lets every client fetch its data after a first delay and then once a period, on one thread of its own.
/// The destruction is the stop; it waits for the cycle that runs.
class SomeipSync {
 public:
  /// Waits by `waiter`, which tests drive by hand.
  SomeipSync(std::chrono::seconds firstWait, std::chrono::seconds cyclePeriod,
             std::unique_ptr<InterruptableTimer> waiter = std::make_unique<InterruptableTimer>());
  ~SomeipSync();
  SomeipSync(const SomeipSync&) = delete;
  SomeipSync& operator=(const SomeipSync&) = delete;

  /// Clients are called one after the other, in this order. To be called before StartSync.
  void AddClient(std::shared_ptr<getFutures::Abstract_GetFutures> client);
  /// To be called once.
  void StartSync();
  /// Whether a thread of this class has been told to end; one flag for the process. Any thread.
  static bool isThreadEnded();

 private:
  void ThreadLoop();

  std::chrono::seconds initialWait;
  std::chrono::seconds period;
  std::vector<std::shared_ptr<getFutures::Abstract_GetFutures>> clients;
  std::unique_ptr<std::thread> thread;
  ara::log::Logger& logger;
  const std::unique_ptr<InterruptableTimer> timer;

  static std::atomic<bool> m_threadend;
};

}  // namespace trov::someipSync
