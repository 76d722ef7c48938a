#include "xr/com/transport/datagram_reader.h"

#include <netinet/in.h>
#include <sys/socket.h>

#include <boost/system/system_error.hpp>
#include <cerrno>
#include <utility>

namespace xr::com::transport {
namespace {

constexpr int kBurst = 64;  // datagrams of one socket before the others get their turn

}  // namespace

Datagram_reader::Datagram_reader(boost::asio::io_context& io, wire::Socket_handle socket, Receive_buffer& buffer, Handler handler)
    : socket_{io}, buffer_{buffer}, handler_{std::move(handler)} {
  socket_.assign(boost::asio::ip::udp::v4(), socket.get());
  socket.release();
}

void Datagram_reader::start() {
  if (!waiting_ && !stopped_) wait();
}

void Datagram_reader::stop() {
  stopped_ = true;
  boost::system::error_code ignored;  // nothing was waiting
  socket_.cancel(ignored);
}

void Datagram_reader::wait() {
  socket_.async_wait(boost::asio::ip::udp::socket::wait_read, [self = shared_from_this()](boost::system::error_code error) {
    self->waiting_ = false;
    if (self->stopped_) return;
    if (error) throw boost::system::system_error{error, "A socket cannot be waited for"};  // whoever runs the thread calls `start` again
    self->drain();
  });
  waiting_ = true;
}

void Datagram_reader::drain() {
  for (int i = 0; i < kBurst && !stopped_; ++i) {
    if (!read_one()) break;
  }
  if (!stopped_) wait();
}

/// False when there is nothing more to read now.
bool Datagram_reader::read_one() {
  sockaddr_in from{};
  socklen_t size = sizeof from;
  const auto received = ::recvfrom(socket_.native_handle(), buffer_.data(), buffer_.size(), 0, reinterpret_cast<sockaddr*>(&from), &size);
  if (received < 0) return errno == EINTR;
  const wire::Endpoint sender{boost::asio::ip::address_v4{ntohl(from.sin_addr.s_addr)}, ntohs(from.sin_port), wire::Protocol::udp};
  handler_(wire::Bytes{buffer_.data(), static_cast<std::size_t>(received)}, sender);
  return true;
}

}  // namespace xr::com::transport
