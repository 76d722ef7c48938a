#pragma once

#include <chrono>
#include <filesystem>
#include <mutex>
#include <string>
#include <string_view>
#include <thread>
#include <vector>

namespace test_support {

/// The service manager's side of the notify protocol (sd_notify(3)): a datagram socket whose messages are kept with their time.
/// A thread of its own reads them, since a full socket would hold up the program's reports.
class NotifySocket {
 public:
  struct Notice {
    std::chrono::steady_clock::time_point time;
    std::string text;
  };

  explicit NotifySocket(const std::filesystem::path& path);
  ~NotifySocket();
  NotifySocket(const NotifySocket&) = delete;
  NotifySocket& operator=(const NotifySocket&) = delete;

  std::vector<Notice> Notices() const;
  std::size_t Count(std::string_view text) const;

 private:
  void Read();

  int socket_ = -1;
  mutable std::mutex mutex_;  // guards notices_
  std::vector<Notice> notices_;
  std::thread reader_;
};

}  // namespace test_support
