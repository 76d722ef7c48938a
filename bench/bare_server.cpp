#include "bench/bare_server.h"

#include <unistd.h>
#include <boost/asio/io_context.hpp>
#include <boost/asio/ip/tcp.hpp>
#include <boost/asio/read.hpp>
#include <boost/asio/write.hpp>
#include <boost/beast/core/flat_buffer.hpp>
#include <boost/beast/http.hpp>
#include <boost/beast/websocket.hpp>

#include <memory>
#include <utility>
#include <vector>

namespace bench {

namespace net = boost::asio;
namespace http = boost::beast::http;
namespace websocket = boost::beast::websocket;
using net::ip::tcp;

namespace {

class Session : public std::enable_shared_from_this<Session> {
 public:
  Session(tcp::socket socket, const std::string& answer) : socket_{std::move(socket)}, answer_{answer} {}
  void Read() {
    request_ = {};
    http::async_read(socket_, buffer_, request_, [self = shared_from_this()](auto error, std::size_t) {
      if (!error) self->Write();
    });
  }

 private:
  void Write() {
    net::async_write(socket_, net::buffer(answer_), [self = shared_from_this()](auto error, std::size_t) {
      if (!error) self->Read();
    });
  }

  tcp::socket socket_;
  boost::beast::flat_buffer buffer_;
  http::request<http::empty_body> request_;
  const std::string& answer_;
};

/// All clients, of which none goes before the benchmark ends.
class FanOut {
 public:
  FanOut(net::io_context& context, const Socket& trigger, std::size_t messageSize, const std::string& text)
      : trigger_{context, tcp::v4(), ::dup(trigger.Number())}, message_(messageSize), text_{text} {
    WaitForMessage();
  }
  void Add(tcp::socket socket) {
    auto& client = *clients_.emplace_back(std::make_unique<Client>(std::move(socket)));
    client.text(true);
    client.auto_fragment(false);
    client.async_accept([](auto) {});
  }

 private:
  using Client = websocket::stream<tcp::socket>;

  void WaitForMessage() {
    net::async_read(trigger_, net::buffer(message_), [this](auto error, std::size_t) {
      if (error) return;
      for (const auto& client : clients_) client->async_write(net::buffer(text_), [](auto, std::size_t) {});
      WaitForMessage();
    });
  }

  tcp::socket trigger_;
  std::vector<unsigned char> message_;
  const std::string& text_;
  std::vector<std::unique_ptr<Client>> clients_;
};

template <class Take>
void Listen(tcp::acceptor& acceptor, const Take& take) {
  acceptor.async_accept([&](auto error, tcp::socket socket) {
    if (!error) {
      socket.set_option(tcp::no_delay{true});
      take(std::move(socket));
    }
    Listen(acceptor, take);
  });
}

template <class Take>
void RunListening(net::io_context& context, const Socket& listener, const Take& take) {
  tcp::acceptor acceptor{context, tcp::v4(), ::dup(listener.Number())};
  Listen(acceptor, take);
  context.run();
}

}  // namespace

void RunBareServer(const Socket& listener, const std::string& answer) {
  net::io_context context{1};
  RunListening(context, listener, [&](tcp::socket socket) { std::make_shared<Session>(std::move(socket), answer)->Read(); });
}

void RunBareFanOut(const Socket& listener, const Socket& trigger, std::size_t messageSize, const std::string& text) {
  net::io_context context{1};
  FanOut fanOut{context, trigger, messageSize, text};
  RunListening(context, listener, [&](tcp::socket socket) { fanOut.Add(std::move(socket)); });
}

}  // namespace bench
