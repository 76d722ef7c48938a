#include "app/pause.h"

#include <cerrno>
#include <ctime>

namespace app {

void SleepHalfSecond() noexcept {
  std::timespec left{0, 500'000'000};
  while (::nanosleep(&left, &left) == -1 && errno == EINTR) {
  }
}

}  // namespace app
