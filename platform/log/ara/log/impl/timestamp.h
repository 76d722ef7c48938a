#pragma once

#include <chrono>
#include <string>

namespace ara::log::impl {

/// Renders points of time as `2026-11-24T10:15:30.123456Z` (RFC 3339, UTC). Keeps the last second's text, since lines come close together.
class Timestamp {
 public:
  void AppendTo(std::string& out, std::chrono::system_clock::time_point time);

 private:
  std::chrono::sys_seconds second_{std::chrono::seconds::min()};
  std::string text_;
};

}  // namespace ara::log::impl
