#pragma once

#include "ara/log/logging.h"

#include <nlohmann/json_fwd.hpp>

#include <chrono>
#include <ostream>
#include <string_view>

namespace vehicle {

/// Tells what happens: one JSON object per line on the stream, flushed at once, and the same as a log line.
/// Each object begins with "t", the seconds since the start, and "event".
class Reporter {
 public:
  explicit Reporter(std::ostream& out);
  void Tell(std::string_view event, const nlohmann::ordered_json& details);

 private:
  std::ostream& out_;
  ara::log::Logger& logger_;
  std::chrono::steady_clock::time_point start_ = std::chrono::steady_clock::now();
};

}  // namespace vehicle
