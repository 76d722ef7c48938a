#pragma once

#include "tests/support/log_file.h"
#include "tests/support/process.h"
#include "tests/support/temp_root.h"

#include <nlohmann/json.hpp>

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace test_support {

/// The simulated vehicle as a child process, driven by commands and watched by the events that it prints. For one thread.
class VehicleProcess {
 public:
  using Matches = std::function<bool(const nlohmann::json&)>;

  /// Starts it with the root's deployment and a scenario (file or name), and waits until it offers.
  /// Throws std::runtime_error if it does not. A second vehicle needs an address of its own.
  explicit VehicleProcess(const TempRoot& root, std::string scenario = "parked", double speed = 1, std::string address = "127.0.0.2");

  /// Starts a new process in place of one that has ended, and waits until it offers.
  void Start();
  /// The same without the wait: it can be ended before it has said anything.
  void Launch();
  void Command(const nlohmann::json& command);

  /// The first event from `from` on (a position of EventCount) that matches; nothing if none comes in time.
  std::optional<nlohmann::json> WaitForEvent(const Matches& matches, std::size_t from = 0, std::chrono::milliseconds deadline = kPatience);
  /// The same, by its name and field.
  std::optional<nlohmann::json> WaitForEvent(std::string_view name, std::string_view field, std::size_t from = 0,
                                             std::chrono::milliseconds deadline = kPatience);
  std::size_t EventCount() { return Events().size(); }
  /// All events of the present process so far.
  const std::vector<nlohmann::json>& Events();
  /// Waits until the bridge has subscribed all sixteen fields that it reads, and tells the seconds from the first offer to the last of
  /// them.
  std::optional<double> WaitUntilSubscribed(std::chrono::milliseconds deadline = kPatience);

  /// SIGKILL: no goodbye. Returns when the process is gone.
  void Kill();
  /// SIGTERM: withdraws its offers first.
  std::optional<ExitStatus> Stop();
  Process& Program() { return *process_; }

 private:
  const TempRoot& root_;
  std::string scenario_;
  double speed_;
  std::string address_;
  int starts_ = 0;
  std::unique_ptr<LineFile> output_;
  std::vector<nlohmann::json> events_;
  std::unique_ptr<Process> process_;
};

}  // namespace test_support
