#include "tests/support/notify_socket.h"

#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>
#include <stdexcept>
#include <system_error>

namespace test_support {

NotifySocket::NotifySocket(const std::filesystem::path& path) {
  sockaddr_un address{};
  address.sun_family = AF_UNIX;
  const std::string text = path.string();
  if (text.size() >= sizeof address.sun_path) throw std::invalid_argument("path too long for a socket: " + text);
  std::memcpy(address.sun_path, text.data(), text.size());
  socket_ = ::socket(AF_UNIX, SOCK_DGRAM | SOCK_CLOEXEC, 0);
  if (socket_ < 0 || ::bind(socket_, reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0)
    throw std::system_error(errno, std::generic_category(), text);
  reader_ = std::thread{[this] { Read(); }};
}

NotifySocket::~NotifySocket() {
  ::shutdown(socket_, SHUT_RDWR);
  reader_.join();
  ::close(socket_);
}

std::vector<NotifySocket::Notice> NotifySocket::Notices() const {
  const std::lock_guard lock{mutex_};
  return notices_;
}

std::size_t NotifySocket::Count(std::string_view text) const {
  const std::lock_guard lock{mutex_};
  return static_cast<std::size_t>(std::count_if(notices_.begin(), notices_.end(), [&](const Notice& n) { return n.text == text; }));
}

void NotifySocket::Read() {
  std::array<char, 4096> buffer;
  for (;;) {
    const auto size = ::recv(socket_, buffer.data(), buffer.size(), 0);
    if (size < 0 && errno == EINTR) continue;
    if (size <= 0) return;
    const std::lock_guard lock{mutex_};
    notices_.push_back({std::chrono::steady_clock::now(), std::string{buffer.data(), static_cast<std::size_t>(size)}});
  }
}

}  // namespace test_support
