#pragma once

#include <chrono>
#include <ctime>
#include <string>

namespace zuva::serve {

/// The `Date` field (RFC 9110 section 6.6.1) with the empty line that ends a head, made once a second. For one thread.
class DateLine {
 public:
  const std::string& Get();

 private:
  std::time_t second_ = -1;
  std::string line_;
};

/// RFC 3339, UTC, with milliseconds: "2026-11-24T10:15:30.123Z".
std::string Timestamp(std::chrono::system_clock::time_point time);

}  // namespace zuva::serve
