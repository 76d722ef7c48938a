#include "xr/com/execution/deadline_guard.h"

#include <utility>

namespace xr::com {

Deadline_guard::Deadline_guard(const unsigned long& deadline, std::function<void(unsigned long)> onMissed)
    : deadline_{deadline}, onMissed_{std::move(onMissed)} {}

Deadline_guard::~Deadline_guard() {
  const auto taken = std::chrono::steady_clock::now() - start_;
  if (taken <= std::chrono::milliseconds{deadline_} || !onMissed_) return;
  const auto time = static_cast<unsigned long>(std::chrono::duration_cast<std::chrono::milliseconds>(taken).count());
  try {
    onMissed_(time);
  } catch (...) {  // a report that fails must not end the process out of a destructor
  }
}

}  // namespace xr::com
