#include "bench/sockets.h"

#include <netinet/in.h>
#include <netinet/tcp.h>
#include <sys/socket.h>
#include <sys/time.h>
#include <unistd.h>

#include <stdexcept>
#include <system_error>
#include <utility>

namespace bench {

namespace {

[[noreturn]] void Fail(const char* what) {
  throw std::system_error(errno, std::generic_category(), what);
}

sockaddr_in Loopback(std::uint16_t port) {
  sockaddr_in address{};
  address.sin_family = AF_INET;
  address.sin_port = htons(port);
  address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  return address;
}

Socket Open(int type) {
  const int number = ::socket(AF_INET, type | SOCK_CLOEXEC, 0);
  if (number < 0) Fail("socket");
  return Socket{number};
}

bool Connect(const Socket& socket, std::uint16_t port) {
  const auto address = Loopback(port);
  return ::connect(socket.Number(), reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0;
}

void BindAnyPort(const Socket& socket) {
  const auto address = Loopback(0);
  if (::bind(socket.Number(), reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0) Fail("bind");
}

void SendWithoutDelay(const Socket& socket) {
  const int on = 1;
  if (::setsockopt(socket.Number(), IPPROTO_TCP, TCP_NODELAY, &on, sizeof on) != 0) Fail("TCP_NODELAY");
}

}  // namespace

Socket::~Socket() {
  if (number_ >= 0) ::close(number_);
}
Socket::Socket(Socket&& other) noexcept : number_{std::exchange(other.number_, -1)} {}
Socket& Socket::operator=(Socket&& other) noexcept {
  std::swap(number_, other.number_);
  return *this;
}

std::uint16_t Socket::Port() const {
  sockaddr_in address{};
  socklen_t size = sizeof address;
  if (::getsockname(number_, reinterpret_cast<sockaddr*>(&address), &size) != 0) Fail("getsockname");
  return ntohs(address.sin_port);
}

void Socket::Send(Bytes bytes) const {
  if (::send(number_, bytes.data(), bytes.size(), MSG_NOSIGNAL) != static_cast<ssize_t>(bytes.size())) Fail("send");
}

std::size_t Socket::Receive(Room room) const {
  const auto size = ::recv(number_, room.data(), room.size(), 0);
  if (size < 0) Fail("receive");
  if (size == 0) throw std::runtime_error("the other side has closed the connection");
  return static_cast<std::size_t>(size);
}

void Socket::ReceiveAll(Room room) const {
  while (!room.empty()) room = room.subspan(Receive(room));
}

Socket OpenUdp() {
  auto socket = Open(SOCK_DGRAM);
  BindAnyPort(socket);
  return socket;
}

void Join(const Socket& udp, std::uint16_t port) {
  if (!Connect(udp, port)) Fail("connect");
}

Socket ListenTcp() {
  auto socket = Open(SOCK_STREAM);
  BindAnyPort(socket);
  if (::listen(socket.Number(), 64) != 0) Fail("listen");
  return socket;
}

Socket Accept(const Socket& listener) {
  Socket socket{::accept4(listener.Number(), nullptr, nullptr, SOCK_CLOEXEC)};
  if (socket.Number() < 0) Fail("accept");
  SendWithoutDelay(socket);
  return socket;
}

Socket ConnectTcp(std::uint16_t port) {
  auto socket = TryConnectTcp(port);
  if (socket.Number() < 0) Fail("connect");
  return socket;
}

Socket TryConnectTcp(std::uint16_t port) {
  auto socket = Open(SOCK_STREAM);
  if (!Connect(socket, port)) return Socket{};
  SendWithoutDelay(socket);
  const timeval patience{20, 0};
  if (::setsockopt(socket.Number(), SOL_SOCKET, SO_RCVTIMEO, &patience, sizeof patience) != 0) Fail("SO_RCVTIMEO");
  return socket;
}

std::uint16_t FreePort() {
  return ListenTcp().Port();
}

SocketPair UdpPair() {
  SocketPair pair{OpenUdp(), OpenUdp()};
  Join(pair.client, pair.server.Port());
  Join(pair.server, pair.client.Port());
  return pair;
}

SocketPair TcpPair() {
  const auto listener = ListenTcp();
  auto client = ConnectTcp(listener.Port());
  return {std::move(client), Accept(listener)};
}

}  // namespace bench
