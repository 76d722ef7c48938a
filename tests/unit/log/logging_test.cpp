#include "ara/log/logging.h"
#include "ara/log/impl/levels.h"
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
  ~Logging() override { ::unsetenv("LOGGING_TEST_FILE"); }
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

TEST_F(Logging, LevelsAreThoseOfTheEnvironmentByContext) {
  EXPECT_EXIT(
      {
        auto& early = CreateLogger("TROV", "made before the start");
        ::setenv("ARA_LOG_LEVEL", "TROV=debug,ACOM=error,*=fatal", 1);
        StartLogging(Sink());
        const auto logAll = [](const ara::log::Logger& logger) {
          logger.LogFatal() << "fatal";
          logger.LogError() << "error";
          logger.LogWarn() << "warn";
          logger.LogDebug() << "debug";
          logger.LogVerbose() << "verbose";
        };
        logAll(early);
        logAll(CreateLogger("TROV", "made later"));
        logAll(CreateLogger("ACOM", ""));
        logAll(CreateLogger("ELSE", ""));
        std::exit(0);
      },
      ExitedWithCode(0), "");
  std::map<std::string, std::string> texts;
  test_support::LogFile file{Sink().substr(5)};
  for (const auto& line : file.Lines()) texts[line.context] += line.text + " ";
  EXPECT_EQ(texts, (std::map<std::string, std::string>{
                       {"TROV", "fatal error warn debug fatal error warn debug "}, {"ACOM", "fatal error "}, {"ELSE", "fatal "}}));
}

TEST_F(Logging, AWrongLevelIsOneWarningAndTheDefaultHolds) {
  EXPECT_EXIT(
      {
        ::setenv("ARA_LOG_LEVEL", "*=verbose,TROV=loud", 1);
        StartLogging(Sink());
        CreateLogger("TROV", "zuva").LogInfo() << "at the default";
        CreateLogger("TROV", "zuva").LogDebug() << "finer";
        std::exit(0);
      },
      ExitedWithCode(0), "");
  EXPECT_THAT(RawLines(), testing::ElementsAre(testing::HasSubstr("WARN TROV DFLT ARA_LOG_LEVEL is \"*=verbose,TROV=loud\""),
                                               testing::EndsWith("INFO TROV TROV at the default")));
}

TEST(Levels, OneWordIsForAllAndHalfAPairForNobody) {
  const auto verbose = ara::log::impl::ReadLevels("verbose", LogLevel::kInfo);
  ASSERT_TRUE(verbose);
  EXPECT_EQ(verbose->Of("TROV"), LogLevel::kVerbose);
  for (const char* const wrong :
       {"off", "INFO", "TROV", "TROV=", "=info", "info,TROV=debug", "TROV=info,", ",", "A=info,A=warn", "A=info=warn"}) {
    EXPECT_FALSE(ara::log::impl::ReadLevels(wrong, LogLevel::kInfo)) << wrong;
  }
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
