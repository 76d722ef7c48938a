#pragma once

#include "tools/vehicle/server/tcp_connection.h"

#include <boost/asio/ip/udp.hpp>

#include <array>
#include <functional>
#include <memory>
#include <vector>

namespace vehicle {

/// The sockets of one offered service: a UDP port, a TCP port and the connections made to it. For the thread of its io_context, which
/// must have ended its run before the port goes.
class ServicePort {
 public:
  struct Callbacks {
    std::function<void(const Endpoint& peer, const xr::com::wire::Message& message)> onMessage;
    std::function<void(const Endpoint& peer, bool open)> onConnection;
  };

  /// Binds both ports, any free ones. Throws boost::system::system_error.
  ServicePort(boost::asio::io_context& context, const boost::asio::ip::address_v4& address, Callbacks callbacks);
  ~ServicePort();
  ServicePort(const ServicePort&) = delete;
  ServicePort& operator=(const ServicePort&) = delete;

  /// Both endpoints as an offer names them.
  std::vector<xr::com::wire::Option> Options() const;
  /// Whether this TCP peer is connected; one that waits to be accepted is.
  bool IsConnected(const Endpoint& peer);
  /// One message over the protocol of the endpoint; dropped if a TCP peer is not connected any more.
  void Send(const Endpoint& to, std::vector<unsigned char> message);
  void BreakConnections();

 private:
  void Receive();
  void TakeDatagram(std::size_t size);
  void WaitForConnection();
  void AcceptAllWaiting();
  std::vector<std::shared_ptr<TcpConnection>>::iterator Find(const Endpoint& peer);
  void OnClosed(const Endpoint& peer);

  Callbacks callbacks_;
  boost::asio::ip::udp::socket udp_;
  boost::asio::ip::tcp::acceptor acceptor_;
  boost::asio::ip::udp::endpoint sender_;
  std::array<unsigned char, xr::com::wire::kMaximumMessage> datagram_;
  std::vector<std::shared_ptr<TcpConnection>> connections_;
};

}  // namespace vehicle
