#pragma once

#include "tools/vehicle/scenario/scenario.h"

#include <boost/asio/steady_timer.hpp>

#include <functional>

namespace vehicle {

/// Plays the steps of a scenario on the thread of an io_context.
class Player {
 public:
  /// `speed` divides all times. `execute` is called for each step when its time has come.
  Player(boost::asio::io_context& context, const Scenario& scenario, double speed, std::function<void(const Action&)> execute);
  void Start();
  void Stop() { timer_.cancel(); }

 private:
  void WaitForNext();
  std::chrono::steady_clock::duration Scaled(std::chrono::milliseconds time) const;

  boost::asio::steady_timer timer_;
  const Scenario& scenario_;
  double speed_;
  std::function<void(const Action&)> execute_;
  std::chrono::steady_clock::time_point roundBegan_;
  std::size_t next_ = 0;
};

}  // namespace vehicle
