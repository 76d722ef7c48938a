#pragma once

#include <boost/asio/io_context.hpp>
#include <boost/asio/ip/udp.hpp>
#include <functional>
#include <memory>
#include <vector>

#include "xr/com/wire/sd_message.h"
#include "xr/com/wire/socket_handle.h"

namespace xr::com::transport {

/// Room for one received datagram, shared by all readers of the transport thread.
using Receive_buffer = std::vector<unsigned char>;

/// Reads the datagrams of one socket on the transport thread. The socket stays open as long as the reader lives, so that other threads
/// may go on sending through `descriptor()`.
class Datagram_reader : public std::enable_shared_from_this<Datagram_reader> {
 public:
  using Handler = std::function<void(wire::Bytes datagram, const wire::Endpoint& sender)>;

  /// `buffer` outlives the reader's last call of `handler`.
  Datagram_reader(boost::asio::io_context& io, wire::Socket_handle socket, Receive_buffer& buffer, Handler handler);

  /// Begins to read, or goes on after an exception has ended the reading. @throws if it cannot wait for the socket.
  void start();

  /// No call of the handler begins after this. Transport thread only.
  void stop();

  int descriptor() { return socket_.native_handle(); }

 private:
  void wait();
  void drain();
  bool read_one();

  boost::asio::ip::udp::socket socket_;
  Receive_buffer& buffer_;
  Handler handler_;
  bool waiting_ = false;
  bool stopped_ = false;
};

}  // namespace xr::com::transport
