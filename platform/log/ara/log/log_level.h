#pragma once

#include <cstdint>

namespace ara::log {

/// How much a record matters; a logger lets pass what is not above its own level.
enum class LogLevel : std::uint8_t { kOff = 0, kFatal = 1, kError = 2, kWarn = 3, kInfo = 4, kDebug = 5, kVerbose = 6 };

/// Where records go when the environment variable ARA_LOG does not say.
enum class LogMode : std::uint8_t { kRemote = 1, kFile = 2, kConsole = 4 };

}  // namespace ara::log
