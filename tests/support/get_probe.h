#pragma once

#include "tests/support/bridge.h"

#include <atomic>
#include <filesystem>
#include <string>
#include <thread>
#include <vector>

namespace test_support {

/// A client with a thread of its own that asks for one path again and again, and keeps how long each answer took.
///
/// The time in which its thread or the server's one that answers was ready to run and got no CPU is the machine's, and is taken off.
/// All else counts: waiting for a lock or for another thread, and work itself.
class GetProbe {
 public:
  GetProbe(Bridge& bridge, std::string path);
  ~GetProbe();
  GetProbe(const GetProbe&) = delete;
  GetProbe& operator=(const GetProbe&) = delete;

  /// Ends the asking and gives the times in milliseconds, the shortest first. An answer that is not 200, or that does not come at all,
  /// counts as a minute.
  std::vector<double> Stop();

 private:
  void Run();
  double MillisecondsOfOne();

  HttpClient client_;
  const std::string path_;
  const std::filesystem::path answering_;  // the record of the scheduler about the server's thread
  std::vector<double> milliseconds_;       // the thread's own until it has ended
  std::atomic<bool> stop_ = false;
  std::thread thread_;
};

}  // namespace test_support
