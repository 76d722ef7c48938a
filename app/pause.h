#pragma once

namespace app {

/// Sleeps for 500 ms, all of them: a signal handler that runs meanwhile does not shorten it.
void SleepHalfSecond() noexcept;

}  // namespace app
