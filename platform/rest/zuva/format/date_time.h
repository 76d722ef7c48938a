#pragma once

#include <cstdint>
#include <string>

#include "zuva/format/value.h"

namespace zuva::format {

/// A date and time as RFC 3339 text: `2026-11-24T10:15:30+00:00`, with `.mmm` before the zone only when the milliseconds are not 0.
class DateTime : public Value {
 public:
  /// Throws `ara::rest::InvalidArgumentException` for a number that no date has (a year over 9999, the 30th of February); second 60 is
  /// a leap second. The zone stands in the text as it is given.
  DateTime(std::uint16_t year, std::uint8_t month, std::uint8_t day, std::uint8_t hour, std::uint8_t minute, std::uint8_t second,
           std::uint16_t milliseconds, std::string zone);
  /// The same for a date that is there; a throw leaves it as it was.
  void Set(std::uint16_t year, std::uint8_t month, std::uint8_t day, std::uint8_t hour, std::uint8_t minute, std::uint8_t second,
           std::uint16_t milliseconds, std::string zone);
  /// Takes the other's date and keeps its own callback, which is told if the text changed.
  DateTime& operator=(const DateTime& other);
  DateTime(const DateTime&) = default;
};

}  // namespace zuva::format
