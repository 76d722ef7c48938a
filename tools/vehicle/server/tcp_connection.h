#pragma once

#include "tools/vehicle/server/subscriber_list.h"
#include "xr/com/wire/message_stream.h"

#include <boost/asio/ip/tcp.hpp>

#include <deque>
#include <functional>
#include <memory>
#include <vector>

namespace vehicle {

/// One client's TCP connection: cuts the stream into messages, sends whole messages in order. It keeps itself alive while it is open.
class TcpConnection : public std::enable_shared_from_this<TcpConnection> {
 public:
  struct Callbacks {
    std::function<void(const Endpoint& peer, const xr::com::wire::Message& message)> onMessage;
    std::function<void(const Endpoint& peer)> onClosed;  ///< once, and not out of Close
  };

  TcpConnection(boost::asio::ip::tcp::socket socket, const Endpoint& peer, Callbacks callbacks);
  void Start() { Read(); }
  /// Queues the bytes; a peer that leaves more than 4 MiB unread loses its connection.
  void Send(std::vector<unsigned char> bytes);
  void Close();
  const Endpoint& Peer() const { return peer_; }

 private:
  void Read();
  void TakeMessages();
  void Write();
  void Fail();

  boost::asio::ip::tcp::socket socket_;
  Endpoint peer_;
  Callbacks callbacks_;
  xr::com::wire::Message_stream stream_;
  std::deque<std::vector<unsigned char>> queue_;  // the first one is being written
  std::size_t queuedBytes_ = 0;
  bool closed_ = false;
};

}  // namespace vehicle
