#include "tests/support/raw_socket.h"

#include <arpa/inet.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <sys/time.h>
#include <unistd.h>
#include <algorithm>
#include <array>
#include <cerrno>
#include <utility>

namespace test_support {

RawSocket::RawSocket(std::uint16_t port, int receiveBuffer) : socket_{socket(AF_INET, SOCK_STREAM, 0)} {
  if (receiveBuffer > 0) setsockopt(socket_, SOL_SOCKET, SO_RCVBUF, &receiveBuffer, sizeof receiveBuffer);
  const timeval patience{10, 0};
  setsockopt(socket_, SOL_SOCKET, SO_RCVTIMEO, &patience, sizeof patience);
  sockaddr_in address{};
  address.sin_family = AF_INET;
  address.sin_port = htons(port);
  address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  ended_ = connect(socket_, reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0;
}

RawSocket::~RawSocket() {
  close(socket_);
}

void RawSocket::Send(std::string_view bytes) {
  while (!bytes.empty()) {
    const auto sent = send(socket_, bytes.data(), bytes.size(), MSG_NOSIGNAL);
    if (sent <= 0) return;
    bytes.remove_prefix(static_cast<std::size_t>(sent));
  }
}

std::string RawSocket::ReadUntil(std::string_view mark) {
  for (;;) {
    const auto at = kept_.find(mark);
    if (at != std::string::npos) {
      auto text = kept_.substr(0, at + mark.size());
      kept_.erase(0, at + mark.size());
      return text;
    }
    if (!ReadMore()) return std::exchange(kept_, {});
  }
}

std::string RawSocket::ReadToEnd() {
  while (ReadMore()) continue;
  return std::exchange(kept_, {});
}

std::string RawSocket::Read(std::size_t most) {
  if (kept_.empty()) ReadMore(most);
  return std::exchange(kept_, {});
}

bool RawSocket::ReadMore(std::size_t most) {
  std::array<char, kPiece> bytes;
  const auto size = recv(socket_, bytes.data(), std::min(most, bytes.size()), 0);
  ended_ = ended_ || size == 0 || (size < 0 && errno != EAGAIN);
  if (size <= 0) return false;
  kept_.append(bytes.data(), static_cast<std::size_t>(size));
  return true;
}

void RawSocket::Upgrade() {
  Send(
      "GET / HTTP/1.1\r\nHost: localhost\r\nConnection: Upgrade\r\nUpgrade: websocket\r\nSec-WebSocket-Version: 13\r\n"
      "Sec-WebSocket-Key: dGhlIHNhbXBsZSBub25jZQ==\r\n\r\n");
  ReadUntil("\r\n\r\n");
}

std::string ClientFrame(unsigned char first, std::string_view payload) {
  std::string frame(1, static_cast<char>(first));
  if (payload.size() < 126) {
    frame += static_cast<char>(0x80U | payload.size());
  } else {
    frame += {static_cast<char>(0xFE), static_cast<char>(payload.size() >> 8U), static_cast<char>(payload.size() & 0xFFU)};
  }
  return frame.append(4, '\0').append(payload);
}

std::vector<ServerFrame> Frames(std::string_view bytes) {
  std::vector<ServerFrame> frames;
  const auto number = [&](std::size_t at, std::size_t size) {
    std::uint64_t value = 0;
    for (std::size_t i = 0; i < size; ++i) value = value << 8U | static_cast<unsigned char>(bytes[at + i]);
    return static_cast<std::size_t>(value);
  };
  while (bytes.size() >= 2) {
    std::size_t size = number(1, 1);
    const std::size_t more = size == 126 ? 2 : size == 127 ? 8 : 0;
    if (bytes.size() < 2 + more) break;
    if (more > 0) size = number(2, more);
    if (bytes.size() < 2 + more + size) break;
    frames.push_back({static_cast<unsigned char>(bytes[0] & 0x0F), std::string{bytes.substr(2 + more, size)}});
    bytes.remove_prefix(2 + more + size);
  }
  return frames;
}

}  // namespace test_support
