#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace test_support {

/// A TCP connection to 127.0.0.1 for bytes as they are. What does not come in time ends a read; nothing throws.
class RawSocket {
 public:
  /// With a receive buffer of few bytes a client that does not read is soon one that the server can send nothing to.
  explicit RawSocket(std::uint16_t port, int receiveBuffer = 0);
  ~RawSocket();
  RawSocket(const RawSocket&) = delete;
  RawSocket& operator=(const RawSocket&) = delete;

  void Send(std::string_view bytes);
  /// Reads until `mark` has come, or the other side has closed; gives all up to and with the mark.
  std::string ReadUntil(std::string_view mark);
  std::string ReadToEnd();
  /// What is there, as many bytes at most.
  std::string Read(std::size_t most);
  bool HasEnded() const { return ended_; }

  /// Upgrades to a WebSocket.
  void Upgrade();

 private:
  static constexpr std::size_t kPiece = 65536;

  bool ReadMore(std::size_t most = kPiece);

  int socket_;
  std::string kept_;  // read beyond a mark
  bool ended_ = false;
};

/// A client's frame with a mask of zeros, so that its bytes stand as they are.
std::string ClientFrame(unsigned char first, std::string_view payload);

/// The frames of a server, taken apart.
struct ServerFrame {
  unsigned char operation;
  std::string payload;
};
std::vector<ServerFrame> Frames(std::string_view bytes);

}  // namespace test_support
