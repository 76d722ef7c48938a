#pragma once

#include <boost/asio/io_context.hpp>
#include <chrono>
#include <functional>
#include <optional>
#include <random>

#include "xr/com/transport/alarm.h"
#include "xr/com/wire/deployment.h"

namespace xr::com::transport {

/// When to ask for one service (AUTOSAR PRS_SOMEIPSD_00397 and following, client's phases): after a random initial delay, then again
/// after delays that double, then no more.
class Search_delays {
 public:
  using Milliseconds = std::chrono::milliseconds;

  Search_delays(const wire::Discovery_deployment& settings, unsigned seed) : settings_{settings}, random_{seed} {}

  /// Begins anew.
  void reset() { sent_ = 0; }

  /// The delay before the next find, or nothing when the last one has been sent.
  std::optional<Milliseconds> next();

 private:
  wire::Discovery_deployment settings_;
  std::mt19937 random_;
  unsigned sent_ = 0;
};

/// Sends the finds of one service as long as it is wanted and nobody offers it. Belongs to the transport thread.
class Search {
 public:
  Search(boost::asio::io_context& io, const wire::Discovery_deployment& settings, std::function<void()> ask);

  /// Begins with the initial delay, also if it runs already.
  void start();
  void stop();

  /// From `start` to `stop`, also when the last find has been sent. False after an exception that has kept the next find from being
  /// planned.
  bool is_running() const { return running_; }

 private:
  void wait();

  Alarm alarm_;
  Search_delays delays_;
  std::function<void()> ask_;
  bool running_ = false;
};

}  // namespace xr::com::transport
