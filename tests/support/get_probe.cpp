#include "tests/support/get_probe.h"

#include <algorithm>
#include <chrono>
#include <fstream>
#include <stdexcept>

namespace test_support {

namespace {

constexpr double kNoAnswer = 60'000;
constexpr std::chrono::milliseconds kPause{2};  // a client that asks often, not a load test

std::filesystem::path RecordOfThread(pid_t process, const std::string& name) {
  for (const auto& thread : std::filesystem::directory_iterator{"/proc/" + std::to_string(process) + "/task"}) {
    std::string found;
    std::getline(std::ifstream{thread.path() / "comm"}, found);
    if (found == name) return thread.path() / "schedstat";
  }
  throw std::runtime_error("the program has no thread " + name);
}

/// How long a thread has been ready and had no CPU, since it began.
double MillisecondsWithoutCpu(const std::filesystem::path& record) {
  double running = 0, waiting = 0;
  std::ifstream{record} >> running >> waiting;
  return waiting / 1e6;
}

}  // namespace

GetProbe::GetProbe(Bridge& bridge, std::string path)
    : client_{bridge.Http()}, path_{std::move(path)}, answering_{RecordOfThread(bridge.Program().Pid(), "zuva-io")}, thread_{[this] {
        Run();
      }} {}

GetProbe::~GetProbe() {
  Stop();
}

std::vector<double> GetProbe::Stop() {
  stop_ = true;
  if (thread_.joinable()) thread_.join();
  std::sort(milliseconds_.begin(), milliseconds_.end());
  return milliseconds_;
}

void GetProbe::Run() {
  while (!stop_) {
    milliseconds_.push_back(MillisecondsOfOne());
    std::this_thread::sleep_for(kPause);
  }
}

double GetProbe::MillisecondsOfOne() try {
  const auto withoutCpu = [this] { return MillisecondsWithoutCpu("/proc/thread-self/schedstat") + MillisecondsWithoutCpu(answering_); };
  const auto before = withoutCpu();
  const auto start = std::chrono::steady_clock::now();
  const auto status = client_.Get(path_).status;
  const std::chrono::duration<double, std::milli> taken = std::chrono::steady_clock::now() - start;
  return status == 200 ? taken.count() - (withoutCpu() - before) : kNoAnswer;
} catch (const std::runtime_error&) {
  return kNoAnswer;
}

}  // namespace test_support
