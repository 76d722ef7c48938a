#include "bench/bare_server.h"

#include <unistd.h>
#include <boost/asio/io_context.hpp>
#include <boost/asio/ip/tcp.hpp>
#include <boost/asio/write.hpp>
#include <boost/beast/core/flat_buffer.hpp>
#include <boost/beast/http.hpp>

#include <memory>
#include <utility>

namespace bench {

namespace net = boost::asio;
namespace http = boost::beast::http;
using net::ip::tcp;

namespace {

class Session : public std::enable_shared_from_this<Session> {
 public:
  Session(tcp::socket socket, const std::string& answer) : socket_{std::move(socket)}, answer_{answer} {
    socket_.set_option(tcp::no_delay{true});
  }
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

void Listen(tcp::acceptor& acceptor, const std::string& answer) {
  acceptor.async_accept([&](auto error, tcp::socket socket) {
    if (!error) std::make_shared<Session>(std::move(socket), answer)->Read();
    Listen(acceptor, answer);
  });
}

}  // namespace

void RunBareServer(const Socket& listener, const std::string& answer) {
  net::io_context context{1};
  tcp::acceptor acceptor{context, tcp::v4(), ::dup(listener.Number())};
  Listen(acceptor, answer);
  context.run();
}

}  // namespace bench
