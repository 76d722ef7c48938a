#pragma once

#include <atomic>
#include <string>
#include <string_view>

namespace ara::process {

/// Tells the service manager of the process's state by the notify protocol of systemd (sd_notify(3)).
///
/// The environment variable NOTIFY_SOCKET, read once at construction, names a Unix datagram socket, by path or, with a leading `@`,
/// in the abstract namespace. Without it nothing is sent. A socket that the system refuses at construction is asked for again by each
/// `Send`. Any thread may send, several at once too.
class NotifySocket {
 public:
  NotifySocket();
  ~NotifySocket();
  NotifySocket(const NotifySocket&) = delete;
  NotifySocket& operator=(const NotifySocket&) = delete;

  /// Sends one assignment, such as `READY=1`, without blocking; throws `std::runtime_error` with the reason if it cannot be sent.
  void Send(std::string_view assignment) const;

 private:
  int Socket() const noexcept;

  const std::string address_;
  mutable std::atomic<int> socket_;  // -1: none yet
};

}  // namespace ara::process
