#pragma once

#include <unistd.h>

#include <utility>

namespace xr::com::wire {

/// Owns a socket's descriptor.
class Socket_handle {
 public:
  Socket_handle() = default;
  explicit Socket_handle(int descriptor) noexcept : descriptor_{descriptor} {}
  Socket_handle(Socket_handle&& other) noexcept : descriptor_{other.release()} {}
  Socket_handle& operator=(Socket_handle&& other) noexcept {
    Socket_handle old{std::exchange(descriptor_, other.release())};
    return *this;
  }
  ~Socket_handle() {
    if (descriptor_ >= 0) ::close(descriptor_);
  }

  int get() const noexcept { return descriptor_; }

  /// Gives the descriptor away, for example to an Asio socket.
  int release() noexcept { return std::exchange(descriptor_, -1); }

 private:
  int descriptor_ = -1;
};

}  // namespace xr::com::wire
