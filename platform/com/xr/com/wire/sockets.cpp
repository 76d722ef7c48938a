#include "xr/com/wire/sockets.h"

#include <arpa/inet.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <sys/uio.h>

#include <array>
#include <cerrno>

namespace xr::com::wire {
namespace {

using boost::asio::ip::address_v4;

constexpr int kReceiveBuffer = 1 << 20;  // a burst of initial values must fit; the kernel takes less where its limit is lower

boost::system::error_code last_error() {
  return {errno, boost::system::system_category()};
}

in_addr to_native(const address_v4& address) {
  return {htonl(address.to_uint())};
}

sockaddr_in to_native(const address_v4& address, std::uint16_t port) {
  sockaddr_in native{};
  native.sin_family = AF_INET;
  native.sin_port = htons(port);
  native.sin_addr = to_native(address);
  return native;
}

template <class Value>
bool set_option(const Socket_handle& socket, int level, int name, const Value& value) {
  return ::setsockopt(socket.get(), level, name, &value, sizeof value) == 0;
}

Socket_handle open_datagram_socket() {
  Socket_handle socket{::socket(AF_INET, SOCK_DGRAM | SOCK_NONBLOCK | SOCK_CLOEXEC, 0)};
  if (socket.get() >= 0) set_option(socket, SOL_SOCKET, SO_RCVBUF, kReceiveBuffer);
  return socket;
}

bool bind_to(const Socket_handle& socket, const address_v4& address, std::uint16_t port) {
  const auto native = to_native(address, port);
  return ::bind(socket.get(), reinterpret_cast<const sockaddr*>(&native), sizeof native) == 0;
}

}  // namespace

Result<Socket_handle> open_group_socket(const address_v4& group, std::uint16_t port, const address_v4& unicast) {
  auto socket = open_datagram_socket();
  const ip_mreq membership{to_native(group), to_native(unicast)};
  if (socket.get() < 0 || !set_option(socket, SOL_SOCKET, SO_REUSEADDR, 1) || !bind_to(socket, group, port) ||
      !set_option(socket, IPPROTO_IP, IP_ADD_MEMBERSHIP, membership)) {
    return last_error();
  }
  return socket;
}

Result<Socket_handle> open_discovery_socket(const address_v4& unicast, std::uint16_t port) {
  auto socket = open_datagram_socket();
  if (socket.get() < 0 || !set_option(socket, SOL_SOCKET, SO_REUSEADDR, 1) || !bind_to(socket, unicast, port) ||
      !set_option(socket, IPPROTO_IP, IP_MULTICAST_IF, to_native(unicast)) || !set_option(socket, IPPROTO_IP, IP_MULTICAST_LOOP, 1) ||
      !set_option(socket, IPPROTO_IP, IP_MULTICAST_TTL, 1)) {
    return last_error();
  }
  return socket;
}

Result<Socket_handle> open_message_socket(const address_v4& unicast) {
  auto socket = open_datagram_socket();
  if (socket.get() < 0 || !bind_to(socket, unicast, 0)) return last_error();
  return socket;
}

Result<Endpoint> local_endpoint(const Socket_handle& socket) {
  sockaddr_in native{};
  socklen_t size = sizeof native;
  if (::getsockname(socket.get(), reinterpret_cast<sockaddr*>(&native), &size) != 0) return last_error();
  return Endpoint{address_v4{ntohl(native.sin_addr.s_addr)}, ntohs(native.sin_port), Protocol::udp};
}

boost::system::error_code send_datagram(int descriptor, const Endpoint& destination, Bytes front, Bytes rest) {
  auto native = to_native(destination.address, destination.port);
  // sendmsg takes pointers to non-const data, which it only reads.
  std::array<iovec, 2> parts{
      {{const_cast<unsigned char*>(front.data()), front.size()}, {const_cast<unsigned char*>(rest.data()), rest.size()}}};
  msghdr message{};
  message.msg_name = &native;
  message.msg_namelen = sizeof native;
  message.msg_iov = parts.data();
  message.msg_iovlen = parts.size();
  while (::sendmsg(descriptor, &message, MSG_NOSIGNAL) < 0) {
    if (errno != EINTR) return last_error();
  }
  return {};
}

}  // namespace xr::com::wire
