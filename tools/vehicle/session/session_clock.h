#pragma once

#include "tools/vehicle/session/charging_session.h"

#include <boost/asio/io_context.hpp>
#include <boost/asio/steady_timer.hpp>

#include <functional>

namespace vehicle {

/// Lets a session's time go on, on the thread of an io_context, `speed` times as fast as that of the clock on the wall.
class SessionClock {
 public:
  using Tell = std::function<void(const nlohmann::json& words)>;

  SessionClock(boost::asio::io_context& context, const SessionSettings& settings, double speed, Tell tell);
  void Start() { WaitForNext(); }
  void Stop() { timer_.cancel(); }
  ChargingSession& Session() { return session_; }

 private:
  void WaitForNext();

  boost::asio::steady_timer timer_;
  ChargingSession session_;
  const double speed_;
  const Tell tell_;
};

}  // namespace vehicle
