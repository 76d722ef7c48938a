#include "tools/vehicle/session/session_clock.h"

#include <utility>

namespace vehicle {

namespace {

constexpr std::chrono::milliseconds kTick{250};

}  // namespace

SessionClock::SessionClock(boost::asio::io_context& context, const SessionSettings& settings, double speed, Tell tell)
    : timer_{context}, session_{settings}, speed_{speed}, tell_{std::move(tell)} {}

void SessionClock::WaitForNext() {
  timer_.expires_after(kTick);
  timer_.async_wait([this](boost::system::error_code error) {
    if (error) return;
    WaitForNext();
    tell_(session_.Advance(kTick * speed_));
  });
}

}  // namespace vehicle
