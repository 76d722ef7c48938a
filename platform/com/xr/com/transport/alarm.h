#pragma once

#include <boost/asio/io_context.hpp>
#include <boost/asio/steady_timer.hpp>
#include <chrono>
#include <cstdint>
#include <functional>

namespace xr::com::transport {

/// A timer with one action, for the transport thread. It knows whether it is set, so that one that an exception has left unset is found
/// and set again. Outlives the handlers of its `io_context`.
class Alarm {
 public:
  using Clock = std::chrono::steady_clock;

  Alarm(boost::asio::io_context& io, std::function<void()> action);

  /// Runs the action once at `time`, in place of any earlier setting. When it throws, the alarm is not set.
  void set(Clock::time_point time);
  void set_after(Clock::duration delay) { set(Clock::now() + delay); }
  void cancel();

  /// False from the begin of the action on.
  bool is_set() const { return set_; }

 private:
  boost::asio::steady_timer timer_;
  const std::function<void()> action_;
  std::uint64_t run_ = 0;  // separates the expiry of an earlier setting from that of this one
  bool set_ = false;
};

}  // namespace xr::com::transport
