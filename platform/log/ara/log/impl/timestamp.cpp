#include "ara/log/impl/timestamp.h"

#include <array>
#include <cstdio>
#include <ctime>

namespace ara::log::impl {

void Timestamp::AppendTo(std::string& out, std::chrono::system_clock::time_point time) {
  const auto second = std::chrono::floor<std::chrono::seconds>(time);
  if (second != second_) {
    const std::time_t seconds = std::chrono::system_clock::to_time_t(second);
    std::tm parts{};
    ::gmtime_r(&seconds, &parts);
    // Not strftime, which looks for a new time zone at each call.
    std::array<char, 96> text{};
    (void)std::snprintf(text.data(), text.size(), "%04d-%02d-%02dT%02d:%02d:%02d.", parts.tm_year + 1900, parts.tm_mon + 1, parts.tm_mday,
                        parts.tm_hour, parts.tm_min, parts.tm_sec);
    text_ = text.data();
    second_ = second;
  }
  auto rest = std::chrono::floor<std::chrono::microseconds>(time - second).count();
  char digits[] = "000000Z";
  for (int i = 5; i >= 0; --i, rest /= 10) digits[i] = static_cast<char>('0' + rest % 10);
  out += text_;
  out.append(digits, sizeof digits - 1);
}

}  // namespace ara::log::impl
