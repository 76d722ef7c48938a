#include "someip/sync/someip_sync.h"

#include "os/thread.h"

#include <utility>

namespace trov::someipSync {

std::atomic<bool> SomeipSync::m_threadend{false};

SomeipSync::SomeipSync(std::chrono::seconds firstWait, std::chrono::seconds cyclePeriod, std::unique_ptr<InterruptableTimer> waiter)
    : initialWait{firstWait},
      period{cyclePeriod},
      logger{ara::log::CreateLogger("DSNC", "Data Sync for Charging Management Core")},
      timer{std::move(waiter)} {}

SomeipSync::~SomeipSync() {
  timer->StopWaiting();
  if (thread && thread->joinable()) {
    thread->join();
    logger.LogInfo() << "[DataSync][DESTRUCTOR] Sync component ended normally.";
  } else {
    logger.LogInfo() << "[DataSync][DESTRUCTOR] Sync thread not joined.";
  }
}

void SomeipSync::AddClient(std::shared_ptr<getFutures::Abstract_GetFutures> client) {
  clients.push_back(std::move(client));
}

void SomeipSync::StartSync() {
  thread = std::make_unique<std::thread>(os::StartThread("data-sync", [this] { ThreadLoop(); }));
}

bool SomeipSync::isThreadEnded() {
  return m_threadend;
}

void SomeipSync::ThreadLoop() {
  // A stop in the first delay only shortens it: a first cycle follows all the same, and the wait behind it ends at once.
  logger.LogInfo() << "SomeipSync initial wait before sync ended successfully: " << timer->WaitFor(initialWait);
  if (m_threadend) return;
  do {
    logger.LogInfo() << "[DataSync] Secondary thread about to do get requests to someip...";
    for (const auto& client : clients) client->FetchData();
    m_threadend = !timer->WaitFor(period);
    logger.LogInfo() << "SomeipSync waited whole duration: " << !m_threadend;
  } while (!m_threadend);
}

}  // namespace trov::someipSync
