#include "serve/listener.h"

#include <chrono>
#include <utility>

#include <boost/asio/ip/v6_only.hpp>
#include <boost/asio/post.hpp>

#include "zuva/logger.h"

namespace zuva::serve {

namespace asio = boost::asio;
using asio::ip::tcp;

namespace {

constexpr std::chrono::milliseconds kPauseAfterError{100};

}  // namespace

Listener::Listener(asio::io_context& io, const ListenAddress& address, bool secure) : acceptor_{io}, pause_{io}, secure_{secure} {
  const tcp::endpoint endpoint{asio::ip::make_address(address.address), address.port};
  acceptor_.open(endpoint.protocol());
  acceptor_.set_option(tcp::acceptor::reuse_address{true});
  if (endpoint.address().is_v6()) acceptor_.set_option(asio::ip::v6_only{true});  // IPv4 has listeners of its own
  acceptor_.bind(endpoint);
  acceptor_.listen();
}

std::string Listener::Text() const {
  const auto endpoint = acceptor_.local_endpoint();
  std::string text = secure_ ? "https://" : "http://";
  const auto address = endpoint.address().to_string();
  text += endpoint.address().is_v6() ? "[" + address + "]" : address;
  return text + ":" + std::to_string(endpoint.port());
}

void Listener::Accept(Taker taker) {
  taker_ = std::move(taker);
  AcceptNext(accepting_.Begin());
}

void Listener::Resume() {
  if (acceptor_.is_open() && !accepting_.IsUnderWay()) AcceptNext(accepting_.Begin());
}

void Listener::Close() {
  boost::system::error_code ignored;  // a socket that does not close takes nobody all the same, since nobody asks it
  acceptor_.close(ignored);
  pause_.cancel();
}

void Listener::AcceptNext(Pending::Ticket ticket) {
  acceptor_.async_accept([this, ticket = std::move(ticket)](const boost::system::error_code& error, tcp::socket socket) mutable {
    if (!acceptor_.is_open()) return;
    if (error) {
      GetLogger().LogWarn() << "A connection could not be taken: " << error.message();
      return AcceptLater(std::move(ticket));
    }
    // Asked for first, since trouble with one client does not end the listening; begun behind what the client has sent already, so that it
    // does not give way to the next one as if it were idle.
    asio::post(acceptor_.get_executor(), [this, ticket = std::move(ticket)]() mutable {
      if (acceptor_.is_open()) AcceptNext(std::move(ticket));
    });
    taker_(std::move(socket));
  });
}

void Listener::AcceptLater(Pending::Ticket ticket) {
  pause_.expires_after(kPauseAfterError);
  pause_.async_wait([this, ticket = std::move(ticket)](const boost::system::error_code& error) mutable {
    if (!error && acceptor_.is_open()) AcceptNext(std::move(ticket));
  });
}

}  // namespace zuva::serve
