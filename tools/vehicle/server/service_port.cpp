#include "tools/vehicle/server/service_port.h"

#include "xr/com/wire/sockets.h"

#include <boost/asio/io_context.hpp>

#include <algorithm>

namespace vehicle {

namespace net = boost::asio;
namespace wire = xr::com::wire;
using net::ip::tcp;
using net::ip::udp;

namespace {

template <class NetEndpoint>
Endpoint Converted(const NetEndpoint& from, wire::Protocol protocol) {
  return {from.address().to_v4(), from.port(), protocol};
}

}  // namespace

ServicePort::ServicePort(net::io_context& context, const net::ip::address_v4& address, Callbacks callbacks)
    : callbacks_{std::move(callbacks)}, udp_{context}, acceptor_{context, tcp::endpoint{address, 0}} {
  udp_.assign(udp::v4(), wire::open_message_socket(address).value().release());
  acceptor_.non_blocking(true);
  Receive();
  WaitForConnection();
}

ServicePort::~ServicePort() {
  for (const auto& connection : connections_) connection->Close();
}

std::vector<wire::Option> ServicePort::Options() const {
  return {{wire::Option_kind::endpoint, Converted(udp_.local_endpoint(), wire::Protocol::udp)},
          {wire::Option_kind::endpoint, Converted(acceptor_.local_endpoint(), wire::Protocol::tcp)}};
}

bool ServicePort::IsConnected(const Endpoint& peer) {
  // The subscription may be read before the connection it relies on, since they come by different sockets.
  AcceptAllWaiting();
  return Find(peer) != connections_.end();
}

void ServicePort::Send(const Endpoint& to, std::vector<unsigned char> message) {
  if (to.protocol == wire::Protocol::udp) {
    wire::send_datagram(udp_.native_handle(), to, message);  // a datagram that cannot be sent is a lost one
  } else if (const auto connection = Find(to); connection != connections_.end()) {
    (*connection)->Send(std::move(message));
  }
}

void ServicePort::BreakConnections() {
  const auto connections = std::exchange(connections_, {});
  for (const auto& connection : connections) {
    connection->Close();
    callbacks_.onConnection(connection->Peer(), false);
  }
}

void ServicePort::Receive() {
  udp_.async_receive_from(net::buffer(datagram_), sender_, [this](auto error, std::size_t size) {
    if (error == net::error::operation_aborted) return;
    if (!error) TakeDatagram(size);  // other errors are those of datagrams sent to a peer that is gone
    Receive();
  });
}

void ServicePort::TakeDatagram(std::size_t size) {
  const auto from = Converted(sender_, wire::Protocol::udp);
  wire::Bytes rest{datagram_.data(), size};
  while (!rest.empty()) {
    const auto message = wire::take_message(rest);
    if (!message) return;
    callbacks_.onMessage(from, *message);
  }
}

void ServicePort::WaitForConnection() {
  acceptor_.async_wait(tcp::acceptor::wait_read, [this](auto error) {
    if (error) return;
    AcceptAllWaiting();
    WaitForConnection();
  });
}

void ServicePort::AcceptAllWaiting() {
  for (;;) {
    boost::system::error_code error;
    tcp::endpoint from;
    tcp::socket socket{acceptor_.get_executor()};
    acceptor_.accept(socket, from, error);
    if (error) return;
    const auto peer = Converted(from, wire::Protocol::tcp);
    connections_.push_back(std::make_shared<TcpConnection>(
        std::move(socket), peer,
        TcpConnection::Callbacks{[this](const Endpoint& p, const wire::Message& message) { callbacks_.onMessage(p, message); },
                                 [this](const Endpoint& p) { OnClosed(p); }}));
    connections_.back()->Start();
    callbacks_.onConnection(peer, true);
  }
}

std::vector<std::shared_ptr<TcpConnection>>::iterator ServicePort::Find(const Endpoint& peer) {
  return std::find_if(connections_.begin(), connections_.end(), [&](const auto& connection) { return connection->Peer() == peer; });
}

void ServicePort::OnClosed(const Endpoint& peer) {
  if (const auto connection = Find(peer); connection != connections_.end()) connections_.erase(connection);
  callbacks_.onConnection(peer, false);
}

}  // namespace vehicle
