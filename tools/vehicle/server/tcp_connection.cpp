#include "tools/vehicle/server/tcp_connection.h"

#include <boost/asio/write.hpp>

namespace vehicle {

namespace net = boost::asio;
namespace wire = xr::com::wire;

namespace {

constexpr std::size_t kMaximumQueuedBytes = 4U << 20U;

}  // namespace

TcpConnection::TcpConnection(net::ip::tcp::socket socket, const Endpoint& peer, Callbacks callbacks)
    : socket_{std::move(socket)}, peer_{peer}, callbacks_{std::move(callbacks)} {
  boost::system::error_code ignored;  // latency suffers without it, nothing else
  socket_.set_option(net::ip::tcp::no_delay{true}, ignored);
}

void TcpConnection::Send(std::vector<unsigned char> bytes) {
  if (closed_) return;
  if (queuedBytes_ + bytes.size() > kMaximumQueuedBytes) return Fail();
  queuedBytes_ += bytes.size();
  queue_.push_back(std::move(bytes));
  if (queue_.size() == 1) Write();
}

void TcpConnection::Close() {
  closed_ = true;
  boost::system::error_code ignored;  // the connection is given up either way
  socket_.close(ignored);
}

void TcpConnection::Read() {
  const auto space = stream_.space();
  socket_.async_read_some(net::buffer(space.data(), space.size()), [self = shared_from_this()](auto error, std::size_t size) {
    if (self->closed_) return;
    if (error) return self->Fail();
    self->stream_.filled(size);
    self->TakeMessages();
  });
}

void TcpConnection::TakeMessages() {
  for (;;) {
    const auto message = stream_.next();
    if (!message) return message.error() == wire::Error::cut_off ? Read() : Fail();
    callbacks_.onMessage(peer_, *message);
    if (closed_) return;
  }
}

void TcpConnection::Write() {
  net::async_write(socket_, net::buffer(queue_.front()), [self = shared_from_this()](auto error, std::size_t size) {
    if (self->closed_) return;
    if (error) return self->Fail();
    self->queuedBytes_ -= size;
    self->queue_.pop_front();
    if (!self->queue_.empty()) self->Write();
  });
}

void TcpConnection::Fail() {
  Close();
  callbacks_.onClosed(peer_);
}

}  // namespace vehicle
