#pragma once

#include "ara/log/log_level.h"

#include <chrono>
#include <string_view>

namespace ara::log {
class Logger;
}

namespace ara::log::impl {

/// One finished line on its way from a stream to the sink. The text belongs to whoever made the record.
struct Record {
  std::chrono::system_clock::time_point time;
  LogLevel level;
  const Logger* logger;  // loggers are never destroyed
  std::string_view text;
};

}  // namespace ara::log::impl
