#include "serve/request_pool.h"

#include <string>
#include <utility>

#include "os/thread.h"

namespace zuva::serve {

RequestPool::RequestPool(std::size_t threads) {
  threads_.reserve(threads);  // a thread that is started has its place
  try {
    for (std::size_t i = 0; i < threads; ++i) {
      threads_.push_back(os::StartThread("zuva-request-" + std::to_string(i), [this] { Loop(); }));
    }
  } catch (...) {  // the threads that run must end before this object does
    Stop();
    throw;
  }
}

RequestPool::~RequestPool() {
  Stop();
}

void RequestPool::Run(std::function<void()> work) {
  {
    const std::lock_guard lock{mutex_};
    work_.push_back(std::move(work));
  }
  wake_.notify_one();
}

void RequestPool::Stop() {
  {
    const std::lock_guard lock{mutex_};
    stopping_ = true;
  }
  wake_.notify_all();
  for (auto& thread : threads_) {
    if (thread.joinable()) thread.join();
  }
}

void RequestPool::Loop() {
  std::unique_lock lock{mutex_};
  for (;;) {
    wake_.wait(lock, [this] { return stopping_ || !work_.empty(); });
    if (work_.empty()) return;
    auto work = std::move(work_.front());
    work_.pop_front();
    lock.unlock();
    work();
    work = nullptr;  // what it holds ends outside the lock
    lock.lock();
  }
}

}  // namespace zuva::serve
