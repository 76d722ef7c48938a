#include "tools/vehicle/scenario/player.h"

#include <boost/asio/io_context.hpp>

namespace vehicle {

Player::Player(boost::asio::io_context& context, const Scenario& scenario, double speed, std::function<void(const Action&)> execute)
    : timer_{context}, scenario_{scenario}, speed_{speed}, execute_{std::move(execute)} {}

void Player::Start() {
  roundBegan_ = std::chrono::steady_clock::now();
  next_ = 0;
  WaitForNext();
}

void Player::WaitForNext() {
  if (next_ == scenario_.steps.size()) {
    if (!scenario_.repeatEvery || scenario_.steps.empty()) return;
    // From the round's planned beginning, so that rounds do not drift.
    roundBegan_ += Scaled(*scenario_.repeatEvery);
    next_ = 0;
  }
  timer_.expires_at(roundBegan_ + Scaled(scenario_.steps[next_].at));
  timer_.async_wait([this](boost::system::error_code error) {
    if (error) return;
    execute_(scenario_.steps[next_++].action);
    WaitForNext();
  });
}

std::chrono::steady_clock::duration Player::Scaled(std::chrono::milliseconds time) const {
  return std::chrono::duration_cast<std::chrono::steady_clock::duration>(time / speed_);
}

}  // namespace vehicle
