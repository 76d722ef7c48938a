#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>

/// Plain blocking IPv4 sockets on loopback: what floors are made of, and what talks to the programs. All throw std::system_error.
namespace bench {

using Bytes = std::span<const unsigned char>;
using Room = std::span<unsigned char>;

inline Bytes AsBytes(std::string_view text) {
  return {reinterpret_cast<const unsigned char*>(text.data()), text.size()};
}

/// A socket of its own that is closed with the object.
class Socket {
 public:
  explicit Socket(int number = -1) : number_{number} {}
  ~Socket();
  Socket(Socket&& other) noexcept;
  Socket& operator=(Socket&& other) noexcept;

  int Number() const { return number_; }
  std::uint16_t Port() const;

  /// The whole of it, as one datagram or as a piece of the stream.
  void Send(Bytes bytes) const;
  /// A datagram, or whatever is there of a stream: at least one byte. Throws std::runtime_error at a stream's end.
  std::size_t Receive(Room room) const;
  /// Fills the room from a stream.
  void ReceiveAll(Room room) const;

 private:
  int number_;
};

/// A UDP socket on any free port.
Socket OpenUdp();
/// From then on it sends to this port, and takes from it alone.
void Join(const Socket& udp, std::uint16_t port);

Socket ListenTcp();
Socket Accept(const Socket& listener);
/// Without delay of small segments; a receive waits 20 s at most, so that no benchmark hangs.
Socket ConnectTcp(std::uint16_t port);
/// The same, but an empty socket (-1) if nobody listens.
Socket TryConnectTcp(std::uint16_t port);

/// A TCP port that was free a moment ago.
std::uint16_t FreePort();

/// Two joined sockets, one for each side of a floor.
struct SocketPair {
  Socket client, server;
};
SocketPair UdpPair();
SocketPair TcpPair();

}  // namespace bench
