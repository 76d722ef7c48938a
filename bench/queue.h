#pragma once

#include <condition_variable>
#include <deque>
#include <mutex>
#include <utility>

namespace bench {

/// What lies between two threads. Unbounded, since benchmarks send one at a time.
template <class Item>
class Queue {
 public:
  void Push(Item item) {
    {
      const std::lock_guard lock{mutex_};
      waiting_.push_back(std::move(item));
    }
    change_.notify_one();
  }
  Item Pop() {
    std::unique_lock lock{mutex_};
    change_.wait(lock, [this] { return !waiting_.empty(); });
    auto item = std::move(waiting_.front());
    waiting_.pop_front();
    return item;
  }

 private:
  std::mutex mutex_;  // guards waiting_
  std::deque<Item> waiting_;
  std::condition_variable change_;
};

}  // namespace bench
