#include "xr/com/execution/static_thread_pool.h"

#include <algorithm>
#include <string>
#include <utility>

#include "os/thread.h"

namespace xr::com {

static_thread_pool::static_thread_pool(std::size_t threads) {
  const auto count = std::max<std::size_t>(threads, 1);
  try {
    while (threads_.size() < count) threads_.push_back(os::StartThread("com_pool_" + std::to_string(threads_.size()), [this] { run(); }));
  } catch (...) {  // the threads already running must be joined before the members go
    stop();
    throw;
  }
}

static_thread_pool::~static_thread_pool() {
  stop();
}

bool static_thread_pool::post(std::function<void()> job) {
  {
    const std::lock_guard lock{mutex_};
    if (stopping_) return false;
    jobs_.push_back(std::move(job));
    ++outstanding_;
  }
  changed_.notify_one();
  return true;
}

void static_thread_pool::stop() {
  const std::lock_guard joining{joinMutex_};
  {
    const std::lock_guard lock{mutex_};
    stopping_ = true;
  }
  changed_.notify_all();
  for (auto& thread : threads_) thread.join();
  threads_.clear();
}

std::size_t static_thread_pool::outstanding_work() const {
  const std::lock_guard lock{mutex_};
  return outstanding_;
}

void static_thread_pool::sub_outstanding_work() {
  const std::lock_guard lock{mutex_};
  --outstanding_;
}

void static_thread_pool::run() {
  std::unique_lock lock{mutex_};
  while (true) {
    changed_.wait(lock, [this] { return stopping_ || !jobs_.empty(); });
    if (jobs_.empty()) return;
    auto job = std::exchange(jobs_.front(), nullptr);
    jobs_.pop_front();
    lock.unlock();
    job();
    job = nullptr;  // what it holds goes before the job counts as finished
    sub_outstanding_work();
    lock.lock();
  }
}

}  // namespace xr::com
