#pragma once

#include "bench/sockets.h"

#include <cstddef>
#include <memory>

struct ssl_st;

namespace bench {

enum class Transport { plain, tls };

/// A client's bytes on a connected blocking socket: as they are, or through TLS, which takes any certificate.
class Channel {
 public:
  /// Shakes hands where there are hands to shake. Throws std::runtime_error if that fails.
  Channel(Socket socket, Transport transport = Transport::plain);

  int Number() const { return socket_.Number(); }
  void Send(Bytes bytes) const;
  /// Whatever is there: at least one byte. Throws std::runtime_error at the end.
  std::size_t Receive(Room room) const;
  /// Whether something has come that the socket does not show any more.
  bool HasMore() const;

 private:
  Socket socket_;
  std::unique_ptr<ssl_st, void (*)(ssl_st*)> tls_;
};

}  // namespace bench
