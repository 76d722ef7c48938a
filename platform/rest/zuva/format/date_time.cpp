#include "zuva/format/date_time.h"

#include <array>
#include <cstddef>
#include <utility>

#include "ara/rest/exceptions.h"

namespace zuva::format {
namespace {

constexpr unsigned kFebruary = 2;

unsigned DaysIn(unsigned month, unsigned year) {
  constexpr std::array<unsigned char, 12> kDays{31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
  const bool leap = (year % 4 == 0 && year % 100 != 0) || year % 400 == 0;
  return kDays[month - 1] + (month == kFebruary && leap ? 1U : 0U);
}

void AppendPadded(std::string& out, unsigned number, std::size_t digits) {
  const auto text = std::to_string(number);
  out.append(digits - text.size(), '0').append(text);
}

}  // namespace

DateTime::DateTime(std::uint16_t year, std::uint8_t month, std::uint8_t day, std::uint8_t hour, std::uint8_t minute, std::uint8_t second,
                   std::uint16_t milliseconds, std::string zone) {
  Set(year, month, day, hour, minute, second, milliseconds, std::move(zone));
}

void DateTime::Set(std::uint16_t year, std::uint8_t month, std::uint8_t day, std::uint8_t hour, std::uint8_t minute, std::uint8_t second,
                   std::uint16_t milliseconds, std::string zone) {
  const bool exists = year <= 9999 && month >= 1 && month <= 12 && day >= 1 && day <= DaysIn(month, year) && hour <= 23 && minute <= 59 &&
                      second <= 60 && milliseconds <= 999;
  if (!exists) throw ara::rest::InvalidArgumentException{"date or time out of range"};
  std::string value;
  AppendPadded(value, year, 4);
  AppendPadded(value += '-', month, 2);
  AppendPadded(value += '-', day, 2);
  AppendPadded(value += 'T', hour, 2);
  AppendPadded(value += ':', minute, 2);
  AppendPadded(value += ':', second, 2);
  if (milliseconds != 0) AppendPadded(value += '.', milliseconds, 3);
  value += zone;
  SetValue(std::move(value));
}

DateTime& DateTime::operator=(const DateTime& other) {
  SetValue(other.GetValue());
  return *this;
}

}  // namespace zuva::format
