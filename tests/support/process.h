#pragma once

#include "tests/support/wait_for.h"

#include <sys/types.h>

#include <filesystem>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace test_support {

/// How a process ended: its exit code, or the signal that ended it.
struct ExitStatus {
  int code = 0;
  int signal = 0;
  friend bool operator==(const ExitStatus&, const ExitStatus&) = default;
};
std::ostream& operator<<(std::ostream& out, const ExitStatus& status);

struct ProcessOptions {
  std::filesystem::path program;
  std::vector<std::string> arguments;
  std::map<std::string, std::optional<std::string>> environment;  ///< over the test's own; an empty optional takes a variable away
  std::filesystem::path outputPath = "/dev/null";                 ///< where standard output goes
  std::filesystem::path errorPath = "/dev/null";                  ///< where standard error goes
};

/// How much of a process stands in memory. Throws std::runtime_error if there is no such process.
double ResidentMegabytes(pid_t process);
/// How many descriptors it has open, and how many threads.
std::size_t OpenFiles(pid_t process);
std::size_t Threads(pid_t process);

/// Raises this process's limit of open files as far as it may, for itself and what it starts, and gives it.
std::size_t RaiseFileLimit();

/// The path of a program that was built into the same folder as the running test.
std::filesystem::path ProgramBesideThisTest(std::string_view name);

/// A child process with a pipe to its standard input. It dies with the test, and a living one is killed by the destructor.
/// One thread of the test uses it at a time.
class Process {
 public:
  /// Starts it. Throws std::system_error if that fails.
  explicit Process(const ProcessOptions& options);
  ~Process();
  Process(const Process&) = delete;
  Process& operator=(const Process&) = delete;

  pid_t Pid() const { return pid_; }
  bool IsRunning() { return !End(); }
  /// Sends a signal; nothing happens if the process has ended.
  void Signal(int number);
  /// Writes one line to its standard input. False if it does not listen any more.
  bool WriteLine(std::string line);
  /// How it ended, or nothing if it is still running when the deadline has passed.
  std::optional<ExitStatus> WaitForEnd(std::chrono::milliseconds deadline = std::chrono::seconds{30});

 private:
  std::optional<ExitStatus> End();

  pid_t pid_ = -1;
  int input_ = -1;
  std::optional<ExitStatus> end_;
};

}  // namespace test_support
