#pragma once

#include <condition_variable>
#include <cstddef>
#include <deque>
#include <memory>
#include <mutex>
#include <thread>

#include "xr/com/transport/find.h"

namespace xr::com::transport {

/// The thread on which all find handlers run, one after another.
///
/// Each change of a list is queued whole, so that a handler sees every loss and every return. When `kMaximumWaiting` changes wait, the
/// two oldest of one find, a loss and its return, go together: what a handler sees last is always the present list.
class Find_thread {
 public:
  static constexpr std::size_t kMaximumWaiting = 16;

  Find_thread();
  ~Find_thread();

  /// Queues a list for a find; nothing happens if the find has ended meanwhile, or this thread. Any thread.
  void post(const std::shared_ptr<Find>& find, Instance_list list);

  /// Waits for the handler that runs, drops what waits, and joins. Not from a handler. Repeating it is harmless.
  void stop();

 private:
  struct Job {
    std::weak_ptr<Find> find;
    Instance_list list;
  };

  void run();
  bool drop_oldest_pair_locked();

  std::mutex mutex_;  // guards the three below
  std::condition_variable changed_;
  std::deque<Job> jobs_;
  bool stopping_ = false;

  std::thread thread_;
};

}  // namespace xr::com::transport
