#include "ara/log/impl/timestamp.h"

#include <array>
#include <cstdio>

namespace ara::log::impl {

void Timestamp::AppendTo(std::string& out, std::chrono::system_clock::time_point time) {
  const auto second = std::chrono::floor<std::chrono::seconds>(time);
  if (second != second_) {
    // Not the C library's, which looks for the time zone though none is asked for, at times when the main thread sets it.
    const auto day = std::chrono::floor<std::chrono::days>(second);
    const std::chrono::year_month_day date{day};
    const std::chrono::hh_mm_ss clock{second - day};
    std::array<char, 96> text{};
    (void)std::snprintf(text.data(), text.size(), "%04d-%02u-%02uT%02d:%02d:%02d.", int{date.year()}, unsigned{date.month()},
                        unsigned{date.day()}, static_cast<int>(clock.hours().count()), static_cast<int>(clock.minutes().count()),
                        static_cast<int>(clock.seconds().count()));
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
