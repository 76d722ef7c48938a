#pragma once

#include "bench/sockets.h"

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace bench {

/// The receiving side of a WebSocket (RFC 6455 section 5.2) on a blocking socket, without anything between it and the bytes.
class FrameReader {
 public:
  explicit FrameReader(const Socket& socket) : socket_{socket}, room_(1U << 20U) {}
  /// The payload of the next text frame, valid until the next call. Other frames are passed over.
  std::string_view Next();
  /// Up to the end of an HTTP head.
  std::string Head();

 private:
  const unsigned char* Need(std::size_t size);

  const Socket& socket_;
  std::vector<unsigned char> room_;
  std::size_t begin_ = 0, end_ = 0;  // what is received and not yet taken
};

/// A connection that is upgraded. Throws std::runtime_error if the server refuses.
Socket Upgraded(std::uint16_t port);
/// A connection that has subscribed to the path, and taken the snapshot.
Socket Subscribed(std::uint16_t port, std::string_view path);
/// Sends a text of less than 126 bytes as a client's frame.
void SendText(const Socket& socket, std::string_view text);
/// A server's frame of a text that takes a two-byte length.
std::vector<unsigned char> ServerFrame(std::string_view text);

}  // namespace bench
