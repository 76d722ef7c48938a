#pragma once

#include <cstddef>
#include <utility>
#include <variant>

#include <boost/asio/buffer.hpp>
#include <boost/asio/error.hpp>
#include <boost/asio/ip/tcp.hpp>
#include <boost/asio/post.hpp>
#include <boost/asio/ssl/context.hpp>
#include <boost/asio/ssl/stream_base.hpp>
#include <boost/beast/core/bind_handler.hpp>
#include <boost/beast/core/error.hpp>
#include <boost/beast/core/role.hpp>
#include <boost/beast/ssl/ssl_stream.hpp>
#include <boost/beast/websocket/ssl.hpp>
#include <boost/beast/websocket/teardown.hpp>

namespace zuva::serve {

/// The bytes of one client: TCP as it is, or TLS on it. Meets Beast's AsyncReadStream and AsyncWriteStream, so that what speaks HTTP and
/// WebSocket need not know which. One read and one write may be under way. I/O thread only.
class ClientStream {
 public:
  using Tcp = boost::asio::ip::tcp::socket;
  using Tls = boost::beast::ssl_stream<Tcp>;
  using executor_type = Tcp::executor_type;

  /// `tls` makes it a TLS stream and must outlive it; its handshake is still to come.
  ClientStream(Tcp socket, boost::asio::ssl::context* tls)
      : stream_{tls ? Stream{std::in_place_type<Tls>, std::move(socket), *tls} : Stream{std::move(socket)}} {}

  executor_type get_executor() { return Socket().get_executor(); }
  bool IsSecure() const { return std::holds_alternative<Tls>(stream_); }
  /// What lies below; its bytes are the stream's only without TLS.
  Tcp& Socket() { return IsSecure() ? std::get<Tls>(stream_).next_layer() : std::get<Tcp>(stream_); }
  const Tcp& Socket() const { return const_cast<ClientStream&>(*this).Socket(); }

  /// Writes what goes out at once. With TLS that is nothing, since a record that went out in part could not be finished otherwise.
  template <class Buffers>
  std::size_t TryWrite(const Buffers& buffers, boost::system::error_code& error) {
    if (auto* const tcp = std::get_if<Tcp>(&stream_)) return tcp->write_some(buffers, error);  // asio sends with MSG_NOSIGNAL
    error = boost::asio::error::would_block;
    return 0;
  }

  template <class Buffers, class Handler>
  auto async_read_some(const Buffers& buffers, Handler&& handler) {
    return std::visit([&](auto& stream) { return stream.async_read_some(buffers, std::forward<Handler>(handler)); }, stream_);
  }
  template <class Buffers, class Handler>
  auto async_write_some(const Buffers& buffers, Handler&& handler) {
    if (dropsWrites_) {
      const auto size = boost::asio::buffer_size(buffers);
      return boost::asio::post(get_executor(),
                               boost::beast::bind_front_handler(std::forward<Handler>(handler), boost::system::error_code{}, size));
    }
    return std::visit([&](auto& stream) { return stream.async_write_some(buffers, std::forward<Handler>(handler)); }, stream_);
  }

  /// While it drops writes they end well and send nothing: for an answer that has been sent in other words.
  void DropWrites(bool drop) { dropsWrites_ = drop; }

  /// Both with TLS only.
  template <class Handler>
  void AsyncHandshake(Handler&& handler) {
    std::get<Tls>(stream_).async_handshake(boost::asio::ssl::stream_base::server, std::forward<Handler>(handler));
  }
  template <class Handler>
  void AsyncGoodbye(Handler&& handler) {
    std::get<Tls>(stream_).async_shutdown(std::forward<Handler>(handler));
  }

  friend void beast_close_socket(ClientStream& stream) { boost::beast::beast_close_socket(stream.Socket()); }
  /// How a WebSocket ends the stream below it; Beast finds both by their names.
  friend void teardown(boost::beast::role_type role, ClientStream& stream, boost::beast::error_code& error) {
    boost::beast::websocket::teardown(role, stream.Socket(), error);
  }
  template <class Handler>
  friend void async_teardown(boost::beast::role_type role, ClientStream& stream, Handler&& handler) {
    using boost::beast::websocket::async_teardown;
    if (auto* const tls = std::get_if<Tls>(&stream.stream_)) return async_teardown(role, *tls, std::forward<Handler>(handler));
    async_teardown(role, stream.Socket(), std::forward<Handler>(handler));
  }

 private:
  using Stream = std::variant<Tcp, Tls>;

  Stream stream_;
  bool dropsWrites_ = false;
};

}  // namespace zuva::serve
