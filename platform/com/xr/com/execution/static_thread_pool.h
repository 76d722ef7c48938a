#pragma once

#include "xr/com/execution/executor.h"

#include <condition_variable>
#include <cstddef>
#include <deque>
#include <functional>
#include <mutex>
#include <thread>
#include <vector>

namespace xr::com {

/// A fixed number of threads that run posted jobs in the order of posting. The strands of all events share one pool.
///
/// The queue needs no bound of its own: a strand has at most one job in it at a time.
class static_thread_pool final : public Executor {
 public:
  explicit static_thread_pool(std::size_t threads = 4);
  /// As `stop`. The owner lets go only after `stop`, or at least never from a job: a thread cannot join itself.
  ~static_thread_pool() override;

  static_thread_pool(const static_thread_pool&) = delete;
  static_thread_pool& operator=(const static_thread_pool&) = delete;

  bool post(std::function<void()> job) override;

  /// Takes no further jobs, runs those already posted, then joins the threads. Repeating it is harmless. Never from a job.
  void stop();

  /// Jobs posted and not yet finished.
  std::size_t outstanding_work() const;

 private:
  void run();
  void sub_outstanding_work();

  mutable std::mutex mutex_;  // guards the members up to stopping_
  std::condition_variable changed_;
  std::deque<std::function<void()>> jobs_;
  std::size_t outstanding_ = 0;
  bool stopping_ = false;

  std::mutex joinMutex_;  // guards threads_ against a second stop; each is joined once
  std::vector<std::thread> threads_;
};

}  // namespace xr::com
