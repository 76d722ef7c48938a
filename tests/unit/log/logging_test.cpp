#include "ara/log/logging.h"
#include "tests/support/log_file.h"
#include "tests/support/temp_root.h"

#include <gmock/gmock.h>

#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <map>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

namespace {

using ara::log::CreateLogger;
using ara::log::LogLevel;
using testing::ExitedWithCode;
using testing::KilledBySignal;
using testing::MatchesRegex;

void StartLogging(const std::string& araLog) {
  ::setenv("ARA_LOG", araLog.c_str(), 1);
  ara::log::InitLogging("TROV", "TROV Application", LogLevel::kInfo, ara::log::LogMode::kRemote, "");
}

/// Logging can be started once a process and its end is part of the story, so each body runs in a process of its own.
class Logging : public testing::Test {
 protected:
  Logging() {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    // The child runs this fixture too and must find the parent's file.
    if (const char* const path = std::getenv("LOGGING_TEST_FILE")) file_ = path;
    ::setenv("LOGGING_TEST_FILE", file_.c_str(), 1);
  }
  std::string Sink() const { return "file:" + file_; }
  std::vector<std::string> RawLines() const {
    std::vector<std::string> raw;
    test_support::LogFile file{file_};
    for (const auto& line : file.Lines()) raw.push_back(line.raw);
    return raw;
  }

 private:
  test_support::TempRoot root_;
  std::string file_ = root_.LogPath();
};

constexpr char kTime[] = "[0-9]{4}-[0-9]{2}-[0-9]{2}T[0-9]{2}:[0-9]{2}:[0-9]{2}\\.[0-9]{6}Z ";

TEST_F(Logging, WritesLinesOfTheToldFormIncludingThoseFromBeforeTheStart) {
  EXPECT_EXIT(
      {
        ara::log::LogInfo() << "early";
        StartLogging(Sink());
        CreateLogger("TROV_MAIN", "main").LogWarn() << "tab\tline\nend\x7f \u00fc";
        CreateLogger("TROV", "zuva").LogError() << "last";
        std::exit(0);
      },
      ExitedWithCode(0), "");
  EXPECT_THAT(RawLines(),
              testing::ElementsAre(MatchesRegex(kTime + std::string{"INFO TROV DFLT early"}),
                                   MatchesRegex(kTime + std::string{"WARN TROV TROV_MAIN tab\\\\x09line\\\\x0Aend\\\\x7F \u00fc"}),
                                   MatchesRegex(kTime + std::string{"ERROR TROV TROV last"})));
}

TEST_F(Logging, WritesTheSameLinesOnTheConsole) {
  EXPECT_EXIT(
      {
        StartLogging("console");
        CreateLogger("CTX", "console").LogFatal() << "to standard error";
        std::exit(0);
      },
      ExitedWithCode(0), "^" + std::string{kTime} + "FATAL TROV CTX to standard error\n$");
}

TEST_F(Logging, LosesNothingToAnUncaughtExceptionAndTellsItsReason) {
  EXPECT_EXIT(
      {
        StartLogging(Sink());
        for (int i = 0; i < 1000; ++i) ara::log::LogInfo() << i;
        std::thread{[] { throw std::runtime_error{"the reason"}; }}.join();
      },
      KilledBySignal(SIGABRT), "terminate called");  // the handler from before is still asked
  const auto lines = RawLines();
  ASSERT_EQ(lines.size(), 1001U);
  EXPECT_THAT(lines.back(), testing::EndsWith("FATAL TROV DFLT Terminated by an exception: the reason"));
}

TEST_F(Logging, KeepsTheOrderOfEachThread) {
  EXPECT_EXIT(
      {
        StartLogging(Sink());
        std::vector<std::thread> threads;
        for (const char* const name : {"A", "B", "C", "D"}) {
          threads.emplace_back([&logger = CreateLogger(name, "thread")] {
            for (int i = 0; i < 1000; ++i) logger.LogInfo() << i;
          });
        }
        for (auto& thread : threads) thread.join();
        std::exit(0);
      },
      ExitedWithCode(0), "");
  test_support::LogFile file{Sink().substr(5)};
  std::map<std::string, int> next;
  for (const auto& line : file.Lines()) ASSERT_EQ(line.text, std::to_string(next[line.context]++)) << line.raw;
  EXPECT_EQ(next, (std::map<std::string, int>{{"A", 1000}, {"B", 1000}, {"C", 1000}, {"D", 1000}}));
}

TEST_F(Logging, TellsWhatIsWrongWithTheSinkAndCanStartAfterwards) {
  EXPECT_EXIT(
      {
        for (const char* const wrong : {"syslog", "file:", "file:/nonexistent/log"}) {
          try {
            StartLogging(wrong);
          } catch (const std::runtime_error& error) {
            std::fprintf(stderr, "%s|", error.what());
          }
        }
        StartLogging(Sink());
        std::exit(0);
      },
      ExitedWithCode(0), "\"syslog\".*\\|.*\"file:\".*\\|.*/nonexistent/log: No such file or directory\\|");
}

}  // namespace
