#include "xr/com/execution/strand.h"

#include <utility>

namespace xr::com {

Strand::Strand(std::shared_ptr<Executor> executor) : executor_{std::move(executor)} {}

void Strand::post(std::function<void()> task) {
  {
    const std::lock_guard lock{mutex_};
    if (closing_) return;
    tasks_.push_back(std::move(task));
    if (++pending_ > 1) return;
  }
  if (!executor_->post([self = shared_from_this()] { self->run(); })) close();
}

void Strand::close() {
  std::deque<std::function<void()>> dropped;  // destroyed after the unlock: a task may own anything
  const std::lock_guard lock{mutex_};
  closing_ = true;
  dropped.swap(tasks_);
  pending_ -= dropped.size();
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
