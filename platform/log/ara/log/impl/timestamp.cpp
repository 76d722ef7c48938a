#include "ara/log/impl/timestamp.h"

#include <ctime>

namespace ara::log::impl {

void Timestamp::AppendTo(std::string& out, std::chrono::system_clock::time_point time) {
  const auto second = std::chrono::floor<std::chrono::seconds>(time);
  if (second != second_) {
    const std::time_t seconds = std::chrono::system_clock::to_time_t(second);
    std::tm parts{};
    ::gmtime_r(&seconds, &parts);
    char text[sizeof "2026-11-24T10:15:30."];
    text_.assign(text, std::strftime(text, sizeof text, "%Y-%m-%dT%H:%M:%S.", &parts));
    second_ = second;
  }
  auto rest = std::chrono::floor<std::chrono::microseconds>(time - second).count();
  char digits[] = "000000Z";
  for (int i = 5; i >= 0; --i, rest /= 10) digits[i] = static_cast<char>('0' + rest % 10);
  out += text_;
  out.append(digits, sizeof digits - 1);
}

}  // namespace ara::log::impl
