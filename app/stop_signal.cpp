#include "app/stop_signal.h"

#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <csignal>

namespace app {

namespace {

std::atomic<unsigned char> stopFlag{0};
static_assert(std::atomic<unsigned char>::is_always_lock_free, "a signal handler takes no lock");

// Runs on any thread at any moment, hence no logger and nothing but write().
extern "C" void OnStopSignal(int number) {
  if (number != SIGINT && number != SIGABRT && number != SIGTERM) return;
  constexpr char kText[] = "sig_handler -> SIGABRT || SIGINT || SIGTERM ";
  const int before = errno;
  [[maybe_unused]] const auto written = ::write(STDOUT_FILENO, kText, sizeof kText - 1);  // nobody to tell if it fails
  errno = before;
  stopFlag.store(1);
}

}  // namespace

void InstallStopSignals() {
  for (const int number : {SIGINT, SIGABRT, SIGTERM}) (void)std::signal(number, OnStopSignal);
}

bool StopRequested() noexcept {
  return stopFlag.load() != 0;
}

}  // namespace app
