#pragma once

#include <functional>

namespace xr::com {

/// Takes jobs and runs each once, later and on a thread of its own choice.
class Executor {
 public:
  virtual ~Executor() = default;

  /// Any thread; returns at once. False when the executor has ended: the job is dropped unrun. A job must not throw.
  virtual bool post(std::function<void()> job) = 0;
};

}  // namespace xr::com
