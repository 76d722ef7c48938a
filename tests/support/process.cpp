#include "tests/support/process.h"

#include <fcntl.h>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <fstream>
#include <iterator>
#include <ostream>
#include <stdexcept>
#include <system_error>

extern char** environ;

namespace test_support {

namespace {

std::vector<std::string> MergedEnvironment(const std::map<std::string, std::optional<std::string>>& changes) {
  std::vector<std::string> merged;
  for (char** entry = environ; *entry; ++entry) {
    const std::string text{*entry};
    if (!changes.contains(text.substr(0, text.find('=')))) merged.push_back(text);
  }
  for (const auto& [name, value] : changes)
    if (value) merged.push_back(name + "=" + *value);
  return merged;
}

std::vector<char*> Pointers(std::vector<std::string>& texts) {
  std::vector<char*> pointers;
  for (auto& text : texts) pointers.push_back(text.data());
  pointers.push_back(nullptr);
  return pointers;
}

int OpenForOutput(const std::filesystem::path& path) {
  const int file = ::open(path.c_str(), O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC, 0644);
  if (file < 0) throw std::system_error(errno, std::generic_category(), path.string());
  return file;
}

// Between fork and exec: only what is allowed in the child of a process with threads.
[[noreturn]] void BecomeProgram(const char* program, char* const* arguments, char* const* environment, int input, int output, int error) {
  ::prctl(PR_SET_PDEATHSIG, SIGKILL);
  ::dup2(input, STDIN_FILENO);
  ::dup2(output, STDOUT_FILENO);
  ::dup2(error, STDERR_FILENO);
  ::close_range(STDERR_FILENO + 1, ~0U, 0);  // a client's socket would stay open as long as a child has it too
  sigset_t none;
  ::sigemptyset(&none);
  ::sigprocmask(SIG_SETMASK, &none, nullptr);
  ::execve(program, arguments, environment);
  ::_exit(127);
}

std::size_t Entries(pid_t process, const char* folder) {
  const std::filesystem::directory_iterator entries{"/proc/" + std::to_string(process) + "/" + folder};
  return static_cast<std::size_t>(std::distance(begin(entries), end(entries)));
}

}  // namespace

std::ostream& operator<<(std::ostream& out, const ExitStatus& status) {
  return status.signal ? out << "ended by signal " << status.signal : out << "exit code " << status.code;
}

double ResidentMegabytes(pid_t process) {
  std::ifstream status{"/proc/" + std::to_string(process) + "/status"};
  for (std::string word; status >> word;) {
    double kilobytes = 0;
    if (word == "VmRSS:" && status >> kilobytes) return kilobytes / 1024;
  }
  throw std::runtime_error("no resident memory in the process's status");
}

std::size_t OpenFiles(pid_t process) {
  return Entries(process, "fd");
}
std::size_t Threads(pid_t process) {
  return Entries(process, "task");
}

std::size_t RaiseFileLimit() {
  rlimit limit{};
  ::getrlimit(RLIMIT_NOFILE, &limit);
  limit.rlim_cur = limit.rlim_max;
  ::setrlimit(RLIMIT_NOFILE, &limit);
  return static_cast<std::size_t>(limit.rlim_cur);
}

std::filesystem::path ProgramBesideThisTest(std::string_view name) {
  return std::filesystem::read_symlink("/proc/self/exe").parent_path() / name;
}

Process::Process(const ProcessOptions& options) {
  std::vector<std::string> arguments{options.program.string()};
  arguments.insert(arguments.end(), options.arguments.begin(), options.arguments.end());
  auto environment = MergedEnvironment(options.environment);
  const auto argumentPointers = Pointers(arguments);
  const auto environmentPointers = Pointers(environment);
  const std::string program = options.program.string();

  // A socket rather than a pipe, so that writing to a process that is gone is an error and not a signal.
  int ends[2];
  if (::socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, ends) != 0)
    throw std::system_error(errno, std::generic_category(), "socketpair");
  const int output = OpenForOutput(options.outputPath);
  const int error = OpenForOutput(options.errorPath);
  pid_ = ::fork();
  const int reason = errno;
  if (pid_ == 0) BecomeProgram(program.c_str(), argumentPointers.data(), environmentPointers.data(), ends[1], output, error);
  for (const int file : {ends[1], output, error}) ::close(file);
  input_ = ends[0];
  if (pid_ < 0) {
    ::close(input_);
    throw std::system_error(reason, std::generic_category(), "fork");
  }
}

Process::~Process() {
  if (IsRunning()) {
    ::kill(pid_, SIGKILL);
    ::waitpid(pid_, nullptr, 0);
  }
  ::close(input_);
}

void Process::Signal(int number) {
  if (IsRunning()) ::kill(pid_, number);
}

bool Process::WriteLine(std::string line) {
  line += '\n';
  return ::send(input_, line.data(), line.size(), MSG_NOSIGNAL) == static_cast<ssize_t>(line.size());
}

std::optional<ExitStatus> Process::WaitForEnd(std::chrono::milliseconds deadline) {
  return WaitFor([this] { return End(); }, deadline);
}

std::optional<ExitStatus> Process::End() {
  int status = 0;
  if (!end_ && ::waitpid(pid_, &status, WNOHANG) == pid_)
    end_ = WIFSIGNALED(status) ? ExitStatus{0, WTERMSIG(status)} : ExitStatus{WEXITSTATUS(status), 0};
  return end_;
}

}  // namespace test_support
