#pragma once

#include <condition_variable>
#include <cstdint>
#include <mutex>

namespace trov::commMngr {

/// A mutex that lets its waiters in as they came, in the manner of a ticket lock; std::mutex promises no order, and a thread that gives
/// it back and takes it at once again passes all sleepers. For use where one thread takes it many times in a row and holds it for long.
/// Meets BasicLockable; any thread may call, the one that locked unlocks.
class FairMutex {
 public:
  void lock() {
    std::unique_lock lock{mutex_};
    const auto ticket = next_++;
    turn_.wait(lock, [&] { return ticket == served_; });
  }
  void unlock() {
    {
      const std::lock_guard lock{mutex_};
      ++served_;
    }
    turn_.notify_all();  // only the holder of the next ticket goes on; never more than a few wait
  }

 private:
  std::mutex mutex_;  // guards the two numbers
  std::condition_variable turn_;
  std::uint64_t next_ = 0;
  std::uint64_t served_ = 0;
};

}  // namespace trov::commMngr
