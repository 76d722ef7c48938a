#pragma once

#include <algorithm>
#include <boost/asio/io_context.hpp>
#include <boost/asio/ip/tcp.hpp>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <mutex>
#include <optional>
#include <string_view>
#include <utility>
#include <vector>

#include "xr/com/transport/alarm.h"
#include "xr/com/transport/counted_warnings.h"
#include "xr/com/wire/message_stream.h"
#include "xr/com/wire/sd_message.h"

namespace xr::com::transport {

/// The delays before the next attempts to connect: 100 ms, doubled up to 2 s.
class Reconnect_delays {
 public:
  using Milliseconds = std::chrono::milliseconds;

  void reset() { next_ = Milliseconds{100}; }
  Milliseconds next() { return std::exchange(next_, std::min(2 * next_, Milliseconds{2000})); }

 private:
  Milliseconds next_{100};
};

/// The TCP connection to one service instance. As long as it is open it is made, and made again when it breaks, after
/// `Reconnect_delays`. Everything but `send` belongs to the transport thread.
class Tcp_link {
 public:
  struct Handlers {
    std::function<void(const wire::Endpoint& local)> up;
    std::function<void()> down;  ///< once after each `up`
    std::function<void(const wire::Message& message)> message;
  };

  /// At most so many bytes wait for a slow peer; a message beyond that is refused.
  static constexpr std::size_t kMaximumQueued = 1 << 20;

  Tcp_link(boost::asio::io_context& io, const boost::asio::ip::address_v4& local, Counted_warnings& warnings, Handlers handlers);

  /// Connects to `remote`, in place of any other. A connection that stands ends, with its `down`.
  void open(const wire::Endpoint& remote);
  void close();

  /// Takes up again what an exception out of this or a handler has cut short.
  void resume();

  /// What `open` was given; nothing after `close`.
  const std::optional<wire::Endpoint>& remote() const { return remote_; }

  /// Sends a message from the caller's thread as far as the socket takes it; the rest is queued. Any thread.
  /// @throws std::bad_alloc, with nothing sent.
  boost::system::error_code send(wire::Bytes front, wire::Bytes rest);

 private:
  using Socket = boost::asio::ip::tcp::socket;
  using Clock = Alarm::Clock;

  void connect();
  void timed_out();
  void connected(boost::system::error_code error);
  void read();
  bool take_messages();
  void failed(std::string_view reason);
  void disconnect();
  void wait_writable();
  bool is_flushing();
  void flush();

  boost::asio::io_context& io_;
  const boost::asio::ip::address_v4 local_;
  Counted_warnings& warnings_;
  const Handlers handlers_;
  Socket socket_;
  Alarm alarm_;  // ends an attempt that takes too long, or begins the next one; set as long as no connection stands
  std::optional<wire::Endpoint> remote_;
  Reconnect_delays delays_;
  std::optional<Clock::time_point> up_since_;
  bool connecting_ = false;
  bool reading_ = false;
  bool awaiting_room_ = false;
  std::uint64_t attempt_ = 0;  // tells the handlers of an earlier socket from those of this one
  wire::Message_stream stream_;

  std::mutex mutex_;     // guards the three below, and the descriptor against being closed while another thread sends
  int descriptor_ = -1;  // of a connection that stands
  std::vector<unsigned char> queued_;
  bool flushing_ = false;
};

}  // namespace xr::com::transport
