#pragma once

#include <chrono>
#include <functional>

namespace xr::com {

/// Watches how long a scope takes: when it outlasts the deadline, the guard's destructor calls a function with the time taken.
///
/// Deadline and time are milliseconds. The function runs on the guarded thread, once, after the fact.
class Deadline_guard {
 public:
  Deadline_guard(const unsigned long& deadline, std::function<void(unsigned long)> onMissed);
  ~Deadline_guard();

  Deadline_guard(const Deadline_guard&) = delete;
  Deadline_guard& operator=(const Deadline_guard&) = delete;

 private:
  const unsigned long deadline_;
  const std::function<void(unsigned long)> onMissed_;
  const std::chrono::steady_clock::time_point start_ = std::chrono::steady_clock::now();
};

}  // namespace xr::com
