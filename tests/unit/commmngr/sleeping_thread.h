#pragma once

#include <unistd.h>

#include <atomic>
#include <fstream>
#include <functional>
#include <string>
#include <thread>
#include <utility>

namespace trov::testing {

/// A thread of which a test can see that it waits for something, such as a lock: so "it does not go on" needs no time to be shown.
class WatchedThread {
 public:
  explicit WatchedThread(std::function<void()> run)
      : thread_{[this, run = std::move(run)] {
          id_ = ::gettid();
          run();
        }} {}
  ~WatchedThread() { thread_.join(); }
  WatchedThread(const WatchedThread&) = delete;
  WatchedThread& operator=(const WatchedThread&) = delete;

  bool Sleeps() const {
    std::ifstream file{"/proc/self/task/" + std::to_string(id_) + "/stat"};
    std::string stat;
    std::getline(file, stat);
    const auto state = stat.rfind(") ");  // the state follows the name, which stands in brackets
    return id_ != 0 && state != stat.npos && stat[state + 2] == 'S';
  }

 private:
  std::atomic<pid_t> id_{0};
  std::thread thread_;
};

}  // namespace trov::testing
