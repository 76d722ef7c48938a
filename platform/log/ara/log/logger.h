#pragma once

#include "ara/log/log_level.h"
#include "ara/log/log_stream.h"

#include <atomic>
#include <string>

namespace ara::log {

/// A named source of log lines with a level of its own. Loggers are made by `CreateLogger` and live as long as the process.
///
/// All operations may be called from any thread.
class Logger {
 public:
  Logger(std::string contextId, std::string description, LogLevel level);
  Logger(const Logger&) = delete;
  Logger& operator=(const Logger&) = delete;

  bool IsLogEnabled(LogLevel level) const noexcept { return level != LogLevel::kOff && level <= level_.load(std::memory_order_relaxed); }

  LogStream LogFatal() const noexcept { return {LogLevel::kFatal, *this}; }
  LogStream LogError() const noexcept { return {LogLevel::kError, *this}; }
  LogStream LogWarn() const noexcept { return {LogLevel::kWarn, *this}; }
  LogStream LogInfo() const noexcept { return {LogLevel::kInfo, *this}; }
  LogStream LogDebug() const noexcept { return {LogLevel::kDebug, *this}; }
  LogStream LogVerbose() const noexcept { return {LogLevel::kVerbose, *this}; }

  const std::string& ContextId() const noexcept { return contextId_; }
  const std::string& Description() const noexcept { return description_; }
  LogLevel Level() const noexcept { return level_.load(std::memory_order_relaxed); }
  void SetLevel(LogLevel level) noexcept { level_.store(level, std::memory_order_relaxed); }

 private:
  const std::string contextId_;
  const std::string description_;
  std::atomic<LogLevel> level_;
};

}  // namespace ara::log
