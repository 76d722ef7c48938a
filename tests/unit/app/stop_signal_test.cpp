#include "app/stop_signal.h"

#include "app/pause.h"

#include <gmock/gmock.h>
#include <unistd.h>

#include <chrono>
#include <csignal>
#include <string>
#include <thread>

namespace {

TEST(StopSignals, EachWritesItsTextAndAsksToStop) {
  for (const int number : {SIGINT, SIGABRT, SIGTERM}) {
    EXPECT_EXIT(
        {
          ::dup2(STDERR_FILENO, STDOUT_FILENO);
          app::InstallStopSignals();
          if (app::StopRequested()) ::_exit(2);
          ::raise(number);
          ::raise(number);
          ::_exit(app::StopRequested() ? 0 : 3);
        },
        testing::ExitedWithCode(0),
        std::string{"^"} + "sig_handler -> SIGABRT \\|\\| SIGINT \\|\\| SIGTERM sig_handler -> SIGABRT \\|\\| SIGINT \\|\\| SIGTERM $");
  }
}

TEST(Pause, IsNotShortenedByASignal) {
  app::InstallStopSignals();
  testing::internal::CaptureStdout();
  const auto begin = std::chrono::steady_clock::now();
  std::thread disturber{[main = ::pthread_self()] {
    for (int i = 0; i < 1000 && !app::StopRequested(); ++i) ::pthread_kill(main, SIGINT);
  }};
  app::SleepHalfSecond();
  EXPECT_GE(std::chrono::steady_clock::now() - begin, std::chrono::milliseconds{500});
  disturber.join();
  testing::internal::GetCapturedStdout();
}

}  // namespace
