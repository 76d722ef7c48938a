#include "xr/com/transport/alarm.h"

#include <utility>

namespace xr::com::transport {

Alarm::Alarm(boost::asio::io_context& io, std::function<void()> action) : timer_{io}, action_{std::move(action)} {}

void Alarm::set(Clock::time_point time) {
  cancel();
  timer_.expires_at(time);
  timer_.async_wait([this, run = run_](boost::system::error_code error) {
    if (error || run != run_) return;
    set_ = false;
    action_();
  });
  set_ = true;
}

void Alarm::cancel() {
  ++run_;
  set_ = false;
  timer_.cancel();
}

}  // namespace xr::com::transport
