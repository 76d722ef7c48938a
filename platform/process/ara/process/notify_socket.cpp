#include "ara/process/notify_socket.h"

#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <cerrno>
#include <cstddef>
#include <cstdlib>
#include <cstring>
#include <stdexcept>
#include <system_error>

namespace ara::process {

namespace {

std::string AddressFromEnvironment() {
  const char* const address = std::getenv("NOTIFY_SOCKET");
  return address == nullptr ? std::string{} : std::string{address};
}

int NewSocket() noexcept {
  return ::socket(AF_UNIX, SOCK_DGRAM | SOCK_NONBLOCK | SOCK_CLOEXEC, 0);
}

[[noreturn]] void Fail(const std::string& address, std::string_view reason) {
  throw std::runtime_error{"Cannot notify the service manager at " + address + ": " + std::string{reason}};
}

}  // namespace

NotifySocket::NotifySocket() : address_{AddressFromEnvironment()}, socket_{address_.empty() ? -1 : NewSocket()} {}

NotifySocket::~NotifySocket() {
  if (socket_ >= 0) ::close(socket_);
}

int NotifySocket::Socket() const noexcept {
  int present = socket_;
  if (present >= 0) return present;
  const int made = NewSocket();
  if (made < 0 || socket_.compare_exchange_strong(present, made)) return made;
  ::close(made);  // another thread was faster
  return present;
}

void NotifySocket::Send(std::string_view assignment) const {
  if (address_.empty()) return;
  sockaddr_un peer{};
  peer.sun_family = AF_UNIX;
  const bool isAbstract = address_.front() == '@';
  if (!isAbstract && address_.front() != '/') Fail(address_, "neither an absolute path nor an abstract name");
  if (address_.size() >= sizeof peer.sun_path) Fail(address_, "the address is too long");
  std::memcpy(peer.sun_path, address_.data(), address_.size());
  if (isAbstract) peer.sun_path[0] = '\0';
  // The length tells where an abstract name ends; a path has its terminating zero besides.
  const auto length = static_cast<socklen_t>(offsetof(sockaddr_un, sun_path) + address_.size() + (isAbstract ? 0 : 1));
  const int socket = Socket();
  if (socket < 0 || ::sendto(socket, assignment.data(), assignment.size(), MSG_NOSIGNAL | MSG_DONTWAIT,
                             reinterpret_cast<const sockaddr*>(&peer), length) < 0) {
    Fail(address_, std::generic_category().message(errno));
  }
}

}  // namespace ara::process
