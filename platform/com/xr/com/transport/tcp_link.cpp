#include "xr/com/transport/tcp_link.h"

#include <sys/socket.h>
#include <sys/uio.h>

#include <algorithm>
#include <array>
#include <boost/asio/post.hpp>
#include <cerrno>
#include <string>
#include <utility>

#include "xr/com/transport/instance_key.h"

namespace xr::com::transport {
namespace {

namespace asio = boost::asio;
using namespace std::chrono_literals;

constexpr auto kConnectTime = 2000ms;
/// A connection that stood so long had no trouble: the next break is answered at the first delay again.
constexpr auto kGoodTime = 2000ms;

boost::system::error_code last_error() {
  return {errno, boost::system::system_category()};
}

/// Sends what the socket takes now; an error only if the connection is of no use any more.
boost::system::result<std::size_t> send_now(int descriptor, wire::Bytes front, wire::Bytes rest) {
  // sendmsg takes pointers to non-const data, which it only reads.
  std::array<iovec, 2> parts{
      {{const_cast<unsigned char*>(front.data()), front.size()}, {const_cast<unsigned char*>(rest.data()), rest.size()}}};
  msghdr message{};
  message.msg_iov = parts.data();
  message.msg_iovlen = parts.size();
  for (;;) {
    const auto sent = ::sendmsg(descriptor, &message, MSG_NOSIGNAL | MSG_DONTWAIT);
    if (sent >= 0) return static_cast<std::size_t>(sent);
    if (errno == EAGAIN || errno == EWOULDBLOCK) return std::size_t{0};
    if (errno != EINTR) return last_error();
  }
}

}  // namespace

Tcp_link::Tcp_link(asio::io_context& io, const asio::ip::address_v4& local, Counted_warnings& warnings, Handlers handlers)
    : io_{io}, local_{local}, warnings_{warnings}, handlers_{std::move(handlers)}, socket_{io}, alarm_{io, [this] { timed_out(); }} {}

void Tcp_link::open(const wire::Endpoint& remote) {
  remote_ = remote;
  delays_.reset();
  disconnect();
  connect();
}

void Tcp_link::close() {
  remote_.reset();
  disconnect();
}

void Tcp_link::resume() {
  if (!remote_) return;
  if (up_since_) {
    if (!reading_ && take_messages()) read();
    wait_writable();
  } else if (!alarm_.is_set()) {
    disconnect();
    connect();
  }
}

void Tcp_link::connect() {
  const auto attempt = ++attempt_;
  connecting_ = true;
  alarm_.set_after(kConnectTime);  // first: whatever goes wrong with this attempt, another one follows
  boost::system::error_code error;
  socket_.open(asio::ip::tcp::v4(), error);
  if (!error) socket_.bind({local_, 0}, error);
  if (error) return failed(error.message());
  socket_.set_option(asio::ip::tcp::no_delay{true}, error);  // without it the connection is only slower
  socket_.async_connect({remote_->address, remote_->port}, [this, attempt](boost::system::error_code result) {
    if (attempt == attempt_) connected(result);
  });
}

void Tcp_link::timed_out() {
  if (connecting_) return failed("no answer");
  connect();
}

void Tcp_link::connected(boost::system::error_code error) {
  asio::ip::tcp::endpoint local;
  if (!error) local = socket_.local_endpoint(error);
  if (error) return failed(error.message());
  alarm_.cancel();
  connecting_ = false;
  up_since_ = Clock::now();
  stream_.clear();
  {
    const std::lock_guard lock{mutex_};
    descriptor_ = socket_.native_handle();
  }
  handlers_.up({local.address().to_v4(), local.port(), wire::Protocol::tcp});
  read();
}

/// A read rather than a wait for one, which the reactor would have to be told of anew for each message.
void Tcp_link::read() {
  const auto space = stream_.space();
  socket_.async_read_some(asio::buffer(space.data(), space.size()),
                          [this, attempt = attempt_](boost::system::error_code error, std::size_t size) {
                            if (attempt != attempt_) return;
                            reading_ = false;
                            if (error == asio::error::eof) return failed("closed by the peer");
                            if (error) return failed(error.message());
                            stream_.filled(size);
                            if (take_messages()) read();
                          });
  reading_ = true;
}

/// False if the connection has ended meanwhile.
bool Tcp_link::take_messages() {
  const auto attempt = attempt_;
  for (;;) {
    const auto message = stream_.next();
    if (message) {
      handlers_.message(*message);
      if (attempt != attempt_) return false;
    } else if (message.error() == wire::Error::cut_off) {
      return true;
    } else {
      warnings_.warn(Fault::broken_stream, [&](auto& line) {
        line << "Closed the connection to " << to_text(*remote_) << ": a message has " << message.error().message();
      });
      failed("unusable bytes");
      return false;
    }
  }
}

/// Ends the attempt or the connection and plans the next one.
void Tcp_link::failed(std::string_view reason) {
  if (up_since_ && Clock::now() - *up_since_ >= kGoodTime) delays_.reset();
  const auto delay = delays_.next();
  warnings_.warn(Fault::connection, [&](auto& line) {
    line << "No connection to " << to_text(*remote_) << ": " << reason << "; the next attempt is in " << delay.count() << " ms";
  });
  disconnect();
  alarm_.set_after(delay);
}

void Tcp_link::disconnect() {
  ++attempt_;
  connecting_ = reading_ = awaiting_room_ = false;
  alarm_.cancel();
  {
    const std::lock_guard lock{mutex_};
    descriptor_ = -1;
    queued_.clear();
    flushing_ = false;
  }
  boost::system::error_code ignored;  // the descriptor is gone in any case
  socket_.close(ignored);
  if (std::exchange(up_since_, std::nullopt)) handlers_.down();
}

boost::system::error_code Tcp_link::send(wire::Bytes front, wire::Bytes rest) {
  const std::lock_guard lock{mutex_};
  if (descriptor_ < 0) return boost::asio::error::not_connected;
  const auto size = front.size() + rest.size();
  if (!queued_.empty() && queued_.size() + size > kMaximumQueued) return boost::asio::error::no_buffer_space;
  // Room and a flush come first: a message that has begun must be finished, and one that is queued must go out.
  if (queued_.capacity() < queued_.size() + size) queued_.reserve(std::max(queued_.size() + size, 2 * queued_.capacity()));
  std::size_t sent = 0;
  if (queued_.empty()) {
    const auto result = send_now(descriptor_, front, rest);
    if (!result) return result.error();
    sent = *result;
    if (sent == size) return {};
  }
  const auto append = [&](wire::Bytes bytes, std::size_t skip) {
    if (skip < bytes.size()) queued_.insert(queued_.end(), bytes.begin() + static_cast<std::ptrdiff_t>(skip), bytes.end());
  };
  append(front, sent);
  append(rest, sent > front.size() ? sent - front.size() : 0);
  if (std::exchange(flushing_, true)) return {};
  try {
    asio::post(io_, [this] { wait_writable(); });
  } catch (const std::exception&) {  // the reader sees the end and connects again, since this message can never be finished
    ::shutdown(descriptor_, SHUT_RDWR);
    descriptor_ = -1;
    return boost::asio::error::no_memory;
  }
  return {};
}

/// Waits until what is queued can go on, if anything is.
void Tcp_link::wait_writable() {
  if (!up_since_ || awaiting_room_ || !is_flushing()) return;
  socket_.async_wait(Socket::wait_write, [this, attempt = attempt_](boost::system::error_code error) {
    if (attempt != attempt_) return;
    awaiting_room_ = false;
    if (error) return failed(error.message());
    flush();
  });
  awaiting_room_ = true;
}

bool Tcp_link::is_flushing() {
  const std::lock_guard lock{mutex_};
  return flushing_;
}

void Tcp_link::flush() {
  boost::system::error_code error;
  {
    const std::lock_guard lock{mutex_};
    if (descriptor_ < 0) return;
    const auto sent = send_now(descriptor_, queued_, {});
    if (sent) {
      queued_.erase(queued_.begin(), queued_.begin() + static_cast<std::ptrdiff_t>(*sent));
      flushing_ = !queued_.empty();
      if (!flushing_) return;
    } else {
      error = sent.error();
    }
  }
  if (error) return failed(error.message());  // too little memory, for one, is nothing that the reader sees
  wait_writable();
}

}  // namespace xr::com::transport
