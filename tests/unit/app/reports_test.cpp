#include "app/phase_reports.h"
#include "app/supervision.h"
#include "ara/log/testing/capture.h"
#include "tests/support/wait_for.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <csignal>
#include <cstdlib>
#include <mutex>
#include <stdexcept>
#include <string>
#include <vector>

namespace {

using ara::log::testing::Capture;
using Clock = std::chrono::steady_clock;
using testing::ElementsAre;

/// A health service that keeps the calls, or fails as told.
class Health : public ara::phm::Phm_client_interface {
 public:
  enum class Answer { accept, runtimeError, otherError };

  void ReportCheckpoint(unsigned short supervision, unsigned short checkpoint) const override {
    Take("checkpoint " + std::to_string(supervision) + " " + std::to_string(checkpoint));
  }
  void ReportHealthMode(unsigned short channel, unsigned int mode) const override {
    Take("mode " + std::to_string(channel) + " " + std::to_string(mode));
  }
  std::vector<std::string> Calls() const {
    const std::lock_guard lock{mutex_};
    return calls_;
  }
  std::vector<Clock::time_point> Times() const {
    const std::lock_guard lock{mutex_};
    return times_;
  }

  std::atomic<Answer> answer{Answer::accept};

 private:
  void Take(std::string call) const {
    {
      const std::lock_guard lock{mutex_};
      calls_.push_back(std::move(call));
      times_.push_back(Clock::now());
    }
    if (answer == Answer::runtimeError) throw std::runtime_error{"no answer"};
    if (answer == Answer::otherError) throw 1;
  }

  mutable std::mutex mutex_;  // guards calls_ and times_
  mutable std::vector<std::string> calls_;
  mutable std::vector<Clock::time_point> times_;
};

class Reports : public testing::Test {
 protected:
  void ReportAll() const {
    reports_.InitBegins();
    reports_.InitEnded();
    reports_.ShutdownBegins();
    reports_.ShutdownEnded();
  }

  Health health_;
  const ara::phm::SupervisionEntity supervision_{health_};
  const ara::phm::HealthChannel channel_{health_};
  const ara::exec::ApplicationClient application_;
  const app::PhaseReports reports_{supervision_, channel_, application_};
};

TEST_F(Reports, PhasesBeginWithTheirModeAndEndWithTheirCheckpoint) {
  ReportAll();
  EXPECT_THAT(health_.Calls(), ElementsAre("mode 1 1", "checkpoint 60071 60071", "checkpoint 60071 60072", "mode 1 2", "mode 1 3",
                                           "checkpoint 60071 60073", "checkpoint 60071 60074"));
}

TEST_F(Reports, AFailureCostsItsGroupOneLineAndNothingElse) {
  const Capture capture;
  health_.answer = Health::Answer::runtimeError;
  ReportAll();
  EXPECT_THAT(health_.Calls(), ElementsAre("mode 1 1", "checkpoint 60071 60072", "mode 1 3", "checkpoint 60071 60074"));
  health_.answer = Health::Answer::otherError;
  ReportAll();
  EXPECT_THAT(capture.Lines(), ElementsAre("Exception at reporting PHM status in phase INIT: no answer",
                                           "Exception at reporting PHM status at end of phase INIT: no answer",
                                           "Exception at reporting PHM status at start of phase SHUTDOWN: no answer",
                                           "Exception at reporting PHM status at end of phase SHUTDOWN: no answer",
                                           "Unexpected exception at reporting PHM status in phase INIT",
                                           "Unexpected exception at reporting PHM status at the end of phase INIT",
                                           "Unexpected exception at reporting PHM status at start of phase SHUTDOWN",
                                           "Unexpected exception at reporting PHM status at end of phase SHUTDOWN"));
}

TEST_F(Reports, SupervisionKeepsItsPeriodWhileEveryReportFails) {
  const Capture capture;
  health_.answer = Health::Answer::runtimeError;
  auto thread = app::StartSupervision(supervision_);
  ASSERT_TRUE(test_support::WaitFor([&] { return health_.Times().size() == 2; }));
  health_.answer = Health::Answer::otherError;
  ASSERT_TRUE(test_support::WaitFor([&] { return health_.Times().size() == 4; }));
  app::StopSupervision(thread);

  EXPECT_FALSE(thread.joinable());
  const auto times = health_.Times();
  for (std::size_t i = 1; i < times.size(); ++i) EXPECT_GE(times[i] - times[i - 1], std::chrono::milliseconds{500});
  EXPECT_LT(times[3] - times[0], std::chrono::milliseconds{2500});
  const auto calls = health_.Calls();
  EXPECT_EQ(std::count(calls.begin(), calls.end(), "checkpoint 60071 60075"), std::ssize(calls));
  const auto lines = capture.Lines();
  ASSERT_EQ(lines.size(), calls.size());
  EXPECT_EQ(lines.front(), "Exception at reporting PHM checkpoint: no answer");
  EXPECT_EQ(lines.back(), "Unexpected exception at reporting PHM checkpoint");
}

TEST_F(Reports, SupervisionLeavesTheSignalsToOthers) {
  auto thread = app::StartSupervision(supervision_);
  EXPECT_NE(::pthread_kill(thread.native_handle(), 0), ESRCH);
  sigset_t mine;
  ::pthread_sigmask(SIG_SETMASK, nullptr, &mine);
  EXPECT_EQ(::sigismember(&mine, SIGTERM), 0);
  EXPECT_EQ(::pthread_kill(thread.native_handle(), SIGTERM), 0);  // would end this process if the thread took it
  app::StopSupervision(thread);
}

}  // namespace
