#pragma once

#include "xr/com/execution/executor.h"

#include <cstddef>
#include <deque>
#include <functional>
#include <memory>
#include <mutex>

namespace xr::com {

/// Runs posted tasks strictly one after the other, in the order of posting, on an executor shared with other strands.
///
/// Always owned by a shared pointer, which the job that drains the strand shares. Its users post a bounded number of tasks.
/// A task must not throw, and it holds its strand's owner weakly at most. Any thread.
class Strand : public std::enable_shared_from_this<Strand> {
 public:
  explicit Strand(std::shared_ptr<Executor> executor);

  /// Appends a task. On a closed strand, or when the executor has ended, the task is dropped unrun. What throws leaves the strand as it
  /// was.
  void post(std::function<void()> task);

  /// Drops all waiting tasks and all later ones. A task that runs is not waited for, so a task may call this.
  void close() noexcept;

 private:
  void run();

  const std::shared_ptr<Executor> executor_;

  std::mutex mutex_;  // guards the members below
  bool closing_ = false;
  std::deque<std::function<void()>> tasks_;
  std::size_t pending_ = 0;  // tasks waiting or running; above 0 the executor has this strand's job
};

}  // namespace xr::com
