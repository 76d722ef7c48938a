#include "xr/com/execution/strand.h"

#include <utility>

namespace xr::com {

Strand::Strand(std::shared_ptr<Executor> executor) : executor_{std::move(executor)} {}

void Strand::post(std::function<void()> task) {
  bool ended = false;
  {
    const std::lock_guard lock{mutex_};
    if (closing_) return;
    tasks_.push_back(std::move(task));
    try {
      ended = pending_ == 0 && !executor_->post([self = shared_from_this()] { self->run(); });
    } catch (...) {  // without a job nobody would drain the queue, so nothing stays in it
      tasks_.pop_back();
      throw;
    }
    ++pending_;
  }
  if (ended) close();
}

void Strand::close() noexcept {
  std::unique_lock lock{mutex_};
  closing_ = true;
  // One by one: a second queue to take them all would need memory. Each is destroyed unlocked, since a task may own anything.
  while (!tasks_.empty()) {
    auto dropped = std::exchange(tasks_.front(), nullptr);
    tasks_.pop_front();
    --pending_;
    lock.unlock();
    dropped = nullptr;
    lock.lock();
  }
}

void Strand::run() {
  std::unique_lock lock{mutex_};
  while (!tasks_.empty()) {
    auto task = std::exchange(tasks_.front(), nullptr);
    tasks_.pop_front();
    lock.unlock();
    task();
    task = nullptr;
    lock.lock();
    --pending_;
  }
}

}  // namespace xr::com
