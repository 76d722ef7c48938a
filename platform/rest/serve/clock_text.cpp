#include "serve/clock_text.h"

#include <array>
#include <cstdio>

namespace zuva::serve {
namespace {

std::tm Broken(std::time_t time) {
  std::tm result{};
  gmtime_r(&time, &result);
  return result;
}

}  // namespace

const std::string& DateLine::Get() {
  const auto now = std::time(nullptr);
  if (now == second_) return line_;
  // Spelt out, since strftime's names of days and months follow the locale.
  static constexpr std::array kDays{"Sun", "Mon", "Tue", "Wed", "Thu", "Fri", "Sat"};
  static constexpr std::array kMonths{"Jan", "Feb", "Mar", "Apr", "May", "Jun", "Jul", "Aug", "Sep", "Oct", "Nov", "Dec"};
  const auto t = Broken(now);
  std::array<char, 96> text{};
  (void)std::snprintf(text.data(), text.size(), "Date: %s, %02d %s %04d %02d:%02d:%02d GMT\r\n\r\n",
                      kDays[static_cast<std::size_t>(t.tm_wday)], t.tm_mday, kMonths[static_cast<std::size_t>(t.tm_mon)], t.tm_year + 1900,
                      t.tm_hour, t.tm_min, t.tm_sec);
  line_ = text.data();
  second_ = now;  // last: without memory for the line it is made anew
  return line_;
}

std::string Timestamp(std::chrono::system_clock::time_point time) {
  const auto since = std::chrono::duration_cast<std::chrono::milliseconds>(time.time_since_epoch()).count();
  const auto t = Broken(static_cast<std::time_t>(since / 1000));
  std::array<char, 64> text{};
  (void)std::snprintf(text.data(), text.size(), "%04d-%02d-%02dT%02d:%02d:%02d.%03dZ", t.tm_year + 1900, t.tm_mon + 1, t.tm_mday, t.tm_hour,
                      t.tm_min, t.tm_sec, static_cast<int>(since % 1000));
  return text.data();
}

}  // namespace zuva::serve
