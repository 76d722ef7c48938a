#pragma once

#include <functional>
#include <string>

#include <boost/asio/io_context.hpp>
#include <boost/asio/ip/tcp.hpp>
#include <boost/asio/steady_timer.hpp>

#include "serve/config.h"
#include "serve/pending.h"

namespace zuva::serve {

/// Accepts connections on one address. I/O thread only, but for the constructor.
class Listener {
 public:
  using Taker = std::function<void(boost::asio::ip::tcp::socket)>;

  /// Binds and listens; throws `boost::system::system_error` if that cannot be done.
  Listener(boost::asio::io_context& io, const ListenAddress& address, bool secure);

  /// Where it listens: "http://[::1]:8080", or "https://…".
  std::string Text() const;
  /// Hands every new connection over, until it is closed. After an error of accept, such as too many open files, the next waits a while.
  void Accept(Taker taker);
  /// Goes on accepting if an exception has ended it; to be called between handlers. Throws if that fails for want of memory.
  void Resume();
  void Close();

 private:
  void AcceptNext(Pending::Ticket ticket);
  void AcceptLater(Pending::Ticket ticket);

  boost::asio::ip::tcp::acceptor acceptor_;
  boost::asio::steady_timer pause_;
  Pending accepting_;  // or about to
  Taker taker_;
  const bool secure_;
};

}  // namespace zuva::serve
