#include "bench/bare_server.h"

#include "bench/queue.h"

#include <unistd.h>
#include <boost/asio/io_context.hpp>
#include <boost/asio/ip/tcp.hpp>
#include <boost/asio/post.hpp>
#include <boost/asio/read.hpp>
#include <boost/asio/write.hpp>
#include <boost/beast/core/flat_buffer.hpp>
#include <boost/beast/http.hpp>
#include <boost/beast/websocket.hpp>

#include <functional>
#include <memory>
#include <thread>
#include <utility>
#include <vector>

namespace bench {

namespace net = boost::asio;
namespace http = boost::beast::http;
namespace websocket = boost::beast::websocket;
using net::ip::tcp;

namespace {

/// `Work` is called with what writes the answer.
template <class Work>
class Session : public std::enable_shared_from_this<Session<Work>> {
 public:
  Session(tcp::socket socket, const std::string& answer, Work& work) : socket_{std::move(socket)}, answer_{answer}, work_{work} {}
  void Read() {
    request_ = {};
    http::async_read(socket_, buffer_, request_, [self = this->shared_from_this()](auto error, std::size_t) {
      if (!error) self->work_([self] { self->Write(); });
    });
  }

 private:
  void Write() {
    net::async_write(socket_, net::buffer(answer_), [self = this->shared_from_this()](auto error, std::size_t) {
      if (!error) self->Read();
    });
  }

  tcp::socket socket_;
  boost::beast::flat_buffer buffer_;
  http::request<http::string_body> request_;
  const std::string& answer_;
  Work& work_;
};

/// A message to another process and its reply, on the thread that asks.
class DirectTrip {
 public:
  DirectTrip(const Socket& other, const Sizes& sizes) : other_{other}, request_(sizes.request), reply_(sizes.replies.front()) {}
  void Send() const { other_.Send(request_); }
  void Receive() { other_.ReceiveAll(reply_); }

 private:
  const Socket& other_;
  std::vector<unsigned char> request_, reply_;
};

/// The same through as many queues as lie on the bridge's road: to a thread that sends and waits, from the one that receives to it, and
/// back to the server's.
class QueuedTrip {
 public:
  QueuedTrip(net::io_context& context, const Socket& other, const Sizes& sizes) : context_{context}, trip_{other, sizes} {}
  void Ask(std::function<void()> done) { asked_.Push(std::move(done)); }
  [[noreturn]] void Send() {
    for (;;) {
      auto done = asked_.Pop();
      trip_.Send();
      replied_.Wait();
      net::post(context_, std::move(done));
    }
  }
  [[noreturn]] void Receive() {
    for (;;) {
      trip_.Receive();
      replied_.Come();
    }
  }

 private:
  net::io_context& context_;
  DirectTrip trip_;
  Queue<std::function<void()>> asked_;
  Meeting replied_;
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

template <class Work>
void RunServer(net::io_context& context, const Socket& listener, const std::string& answer, const Work& work) {
  RunListening(context, listener,
               [&](tcp::socket socket) { std::make_shared<Session<const Work>>(std::move(socket), answer, work)->Read(); });
}

}  // namespace

void RunBareServer(const Socket& listener, const std::string& answer) {
  net::io_context context{1};
  const auto work = [](const auto& done) { done(); };
  RunServer(context, listener, answer, work);
}

void RunAskingServer(const Socket& listener, const std::string& answer, Trip trip, const Socket& other, const Sizes& sizes) {
  net::io_context context{1};
  if (trip == Trip::oneThread) {
    DirectTrip direct{other, sizes};
    const auto work = [&](const auto& done) {
      direct.Send();
      direct.Receive();
      done();
    };
    return RunServer(context, listener, answer, work);
  }
  QueuedTrip queued{context, other, sizes};
  const std::thread sender{[&] { queued.Send(); }}, receiver{[&] { queued.Receive(); }};
  const auto work = [&](auto done) { queued.Ask(std::move(done)); };
  RunServer(context, listener, answer, work);
}

void RunBareFanOut(const Socket& listener, const Socket& trigger, std::size_t messageSize, const std::string& text) {
  net::io_context context{1};
  FanOut fanOut{context, trigger, messageSize, text};
  RunListening(context, listener, [&](tcp::socket socket) { fanOut.Add(std::move(socket)); });
}

}  // namespace bench
