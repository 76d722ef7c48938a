#include "ara/log/impl/dlt_context_ids.h"
#include "tests/support/log_file.h"
#include "tests/support/process.h"
#include "tests/support/temp_root.h"

#include <arpa/inet.h>
#include <gmock/gmock.h>
#include <sys/socket.h>
#include <unistd.h>

#include <chrono>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace {

using test_support::Process;
using test_support::ProcessOptions;
using test_support::WaitFor;
using testing::HasSubstr;

TEST(DltContextIds, AreUniqueAndOfFourCharacters) {
  ara::log::impl::DltContextIds ids;
  EXPECT_EQ(ids.Take("TROV_MAIN"), "TROV");
  EXPECT_EQ(ids.Take("DSNC"), "DSNC");
  for (int i = 1; i < 10; ++i) EXPECT_EQ(ids.Take("TROV"), "TRO" + std::to_string(i));
  EXPECT_EQ(ids.Take("TROV"), "TR10");
  EXPECT_EQ(ids.Take(""), "1");
}

std::string FreeTcpPort() {
  const int probe = ::socket(AF_INET, SOCK_STREAM, 0);
  sockaddr_in address{};
  address.sin_family = AF_INET;
  socklen_t size = sizeof address;
  (void)::bind(probe, reinterpret_cast<sockaddr*>(&address), size);
  ::getsockname(probe, reinterpret_cast<sockaddr*>(&address), &size);
  ::close(probe);
  return std::to_string(ntohs(address.sin_port));
}

std::string Content(const std::filesystem::path& path) {
  std::ifstream file{path};
  return {std::istreambuf_iterator<char>{file}, {}};
}

/// A daemon of its own, and the program that logs to it.
class Dlt : public testing::Test {
 protected:
  void StartDaemon() {
    constexpr const char* kOnStandardError = "\nLoggingMode = 3\n";
    std::ofstream{root_.Path() / "dlt.conf"} << "ControlSocketPath = " << (root_.Path() / "control").string()
                                             << "\nPersistanceStoragePath = " << root_.Path().string() << kOnStandardError;
    daemon_.emplace(Tool("dlt-daemon", {"-c", root_.Path() / "dlt.conf", "-t", root_.Path(), "-p", port_}));
    ASSERT_TRUE(WaitFor([this] { return std::filesystem::exists(root_.Path() / "control"); }));
  }
  ProcessOptions Speaker() const {
    ProcessOptions options;
    options.program = test_support::ProgramBesideThisTest("dlt_speaker");
    options.environment = {{"DLT_PIPE_DIR", root_.Path()}, {"ARA_LOG", "dlt"}};
    options.outputPath = root_.Path() / "speaker.out";
    return options;
  }
  ProcessOptions Tool(const std::string& name, std::vector<std::string> arguments) const {
    ProcessOptions options;
    options.program = "/usr/bin/" + name;
    options.arguments = std::move(arguments);
    options.outputPath = root_.Path() / (name + ".out");
    options.errorPath = root_.Path() / (name + ".err");
    return options;
  }
  /// What a tool that ends by itself prints.
  std::string Answer(const std::string& name, std::vector<std::string> arguments) const {
    const auto options = Tool(name, std::move(arguments));
    Process{options}.WaitForEnd();
    return Content(options.outputPath);
  }

  test_support::TempRoot root_;
  std::string port_ = FreeTcpPort();
  std::optional<Process> daemon_;
};

TEST_F(Dlt, LinesReachTheDaemonUnderContextsWithTheirFullNames) {
  StartDaemon();
  const auto heard = (root_.Path() / "heard.dlt").string();
  Process receiver{Tool("dlt-receive", {"-o", heard, "-p", port_, "127.0.0.1"})};
  Process speaker{Speaker()};
  ASSERT_TRUE(WaitFor([&] { return Content(heard).find("two\\x0Alines") != std::string::npos; }));
  const std::string lines = Answer("dlt-convert", {"-a", heard});
  EXPECT_THAT(lines, HasSubstr("TROV TROV log info V 1 [hello 42]"));
  EXPECT_THAT(lines, HasSubstr("TROV TRO1 log warn V 1 [" + std::string(1382, 'x') + "y]")) << "cut before half a character";
  EXPECT_THAT(lines, testing::Not(HasSubstr("SIGPIPE")));

  std::string contexts;
  EXPECT_TRUE(WaitFor([&] {
    return (contexts = Answer("dlt-control", {"-j", "-v", "-p", port_, "127.0.0.1"})).find("TRO2") != std::string::npos;
  }));
  EXPECT_THAT(contexts, HasSubstr("TROV_MAIN: main"));
  EXPECT_THAT(contexts, HasSubstr("TROV: Charging Management Core zuva"));
  EXPECT_THAT(contexts, HasSubstr("TROV: Charging Management Core proxy"));
}

TEST_F(Dlt, AViewerTurnsContextsUpAndDown) {
  StartDaemon();
  const auto heard = (root_.Path() / "heard.dlt").string();
  Process receiver{Tool("dlt-receive", {"-o", heard, "-p", port_, "127.0.0.1"})};
  Process speaker{Speaker()};
  ASSERT_TRUE(WaitFor([&] { return Content(heard).find("two\\x0Alines") != std::string::npos; }));

  const auto turn = [this](const char* context, const char* level) {
    (void)Answer("dlt-control", {"-a", "TROV", "-c", context, "-l", level, "-t", "200", "-p", port_, "127.0.0.1"});
  };
  const auto levelsBecome = [&](const std::string& levels) {
    return WaitFor([&] {
      (void)speaker.WriteLine("a fine line");
      return testing::Value(Content(root_.Path() / "speaker.out"), testing::EndsWith(levels + "\n"));
    });
  };
  EXPECT_TRUE(levelsBecome("444"));
  turn("TRO1", "5");
  turn("SLNT", "6");
  EXPECT_TRUE(levelsBecome("456"));
  EXPECT_TRUE(WaitFor([&] { return Content(heard).find("a fine line") != std::string::npos; }));
  turn("TROV", "1");
  EXPECT_TRUE(levelsBecome("156"));
}

TEST_F(Dlt, ADaemonThatComesLateDoesNotTakeTheLevelsAway) {
  auto options = Speaker();
  options.environment["ARA_LOG_LEVEL"] = "debug";
  Process speaker{options};
  (void)speaker.WriteLine("nobody is there");
  ASSERT_TRUE(WaitFor([&] { return Content(options.outputPath) == "555\n"; }));
  StartDaemon();
  const auto daemonSays = [this] { return Content(root_.Path() / "dlt-daemon.err"); };
  ASSERT_TRUE(WaitFor([&] { return daemonSays().find("log-level to context: TROV:TRO1 [-1 -> 4]") != std::string::npos; }));
  const auto heard = (root_.Path() / "heard.dlt").string();
  Process receiver{Tool("dlt-receive", {"-o", heard, "-p", port_, "127.0.0.1"})};
  EXPECT_TRUE(WaitFor([&] {
    (void)speaker.WriteLine("a fine line");
    return Content(heard).find("a fine line") != std::string::npos;
  }));
  EXPECT_THAT(Content(options.outputPath), testing::EndsWith("555\n"));
}

TEST_F(Dlt, WithoutADaemonTheProgramEndsAllTheSameAndPrintsNothing) {
  Process speaker{Speaker()};
  const auto begin = std::chrono::steady_clock::now();
  speaker.WriteLine("end");
  EXPECT_EQ(speaker.WaitForEnd(), test_support::ExitStatus{});
  EXPECT_LT(std::chrono::steady_clock::now() - begin, std::chrono::seconds{2});
  EXPECT_EQ(Content(root_.Path() / "speaker.out"), "");
}

}  // namespace
