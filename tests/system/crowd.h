#pragma once

#include "tests/support/bridge.h"
#include "tests/support/mirror.h"

#include <nlohmann/json.hpp>

#include <atomic>
#include <cstddef>
#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

namespace system_test {

/// One client of the crowd. For one thread at a time.
class CrowdClient {
 public:
  virtual ~CrowdClient() = default;
  /// Does what it does for a moment. Throws std::exception when something comes that must not.
  virtual void Turn() = 0;
};

/// Hears of a service or a resource, and checks that each event follows from those before it.
class CrowdSubscriber final : public CrowdClient {
 public:
  CrowdSubscriber(test_support::Bridge& bridge, std::string path);
  void Turn() override;
  /// In what it differs from all that is shown, by paths, below its own; empty if in nothing.
  std::string Difference(const std::map<std::string, nlohmann::json>& shown) const;

 private:
  std::string path_;
  test_support::Mirror mirror_;
};

/// Asks for this and that in turn, and checks the status.
std::unique_ptr<CrowdClient> MakeReader(test_support::Bridge& bridge, std::size_t number);
/// Writes to an object of one of the five kinds, by POST or over a WebSocket, a few times a second. Its statuses are counted; only those
/// may come that a vehicle which is there, silent or gone can bring about.
std::unique_ptr<CrowdClient> MakeWriter(test_support::Bridge& bridge, std::size_t number, std::map<unsigned, std::size_t>& statuses);

/// Has clients take their turns on a thread of its own. One that has failed has no more turns.
class CrowdThread {
 public:
  explicit CrowdThread(std::vector<std::unique_ptr<CrowdClient>> clients);
  ~CrowdThread() { Stop(); }
  CrowdThread(const CrowdThread&) = delete;
  CrowdThread& operator=(const CrowdThread&) = delete;

  void Stop();
  /// When it has stopped.
  const std::vector<std::string>& Faults() const { return faults_; }

 private:
  void Run();

  std::vector<std::unique_ptr<CrowdClient>> clients_;
  std::vector<std::string> faults_;
  std::atomic<bool> stop_ = false;
  std::thread thread_;
};

}  // namespace system_test
