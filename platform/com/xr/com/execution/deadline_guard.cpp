#include "xr/com/execution/deadline_guard.h"

#include <utility>

namespace xr::com {

Deadline_guard::Deadline_guard(const unsigned long& deadline, std::function<void(unsigned long)> onMissed)
    : deadline_{deadline}, onMissed_{std::move(onMissed)} {}

Deadline_guard::~Deadline_guard() {
  const auto taken = std::chrono::duration_cast<std::chrono::milliseconds>(std::chrono::steady_clock::now() - start_);
  const auto time = static_cast<unsigned long>(taken.count());
  if (time <= deadline_ || !onMissed_) return;
  try {
    onMissed_(time);
  } catch (...) {  // a report that fails must not end the process out of a destructor
  }
}

}  // namespace xr::com
