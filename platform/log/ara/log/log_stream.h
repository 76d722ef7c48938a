#pragma once

#include "ara/log/log_level.h"

#include <charconv>
#include <concepts>
#include <cstddef>
#include <exception>
#include <string_view>
#include <system_error>
#include <type_traits>

namespace ara::log {

class Logger;

/// A text that is a line by itself and keeps its whole length, up to `kLimit` bytes: one that is read by programs, such as JSON. It is
/// not copied before the stream ends, and must outlive it.
struct WholeLine {
  static constexpr std::size_t kLimit = std::size_t{16} * 1024;
  std::string_view text;
};

/// One log line: items are joined without anything between them, and the line is handed on when the stream is destroyed.
///
/// The logger's level is asked once, at construction; a disabled stream formats nothing. Text is built in the stream itself,
/// without heap or lock. One item is cut at `kItemLimit` bytes and a line at `kLineLimit`, both on a UTF-8 character.
/// Nothing throws: a record that finds no room is counted as lost. A stream belongs to one thread.
class LogStream {
 public:
  static constexpr std::size_t kItemLimit = 1024;
  static constexpr std::size_t kLineLimit = 4096;

  LogStream(LogLevel level, const Logger& logger) noexcept;
  ~LogStream();
  LogStream(const LogStream&) = delete;
  LogStream& operator=(const LogStream&) = delete;

  LogStream& operator<<(std::string_view text) noexcept {
    if (enabled_) Append(text);
    return *this;
  }
  LogStream& operator<<(const char* text) noexcept {
    if (enabled_) Append(text == nullptr ? std::string_view{"(null)"} : std::string_view{text});
    return *this;
  }
  LogStream& operator<<(char character) noexcept { return *this << std::string_view{&character, 1}; }
  LogStream& operator<<(bool value) noexcept { return *this << (value ? std::string_view{"true"} : std::string_view{"false"}); }
  /// Takes the place of the line: what stands in it already is dropped, and so is what follows.
  LogStream& operator<<(WholeLine line) noexcept;
  LogStream& operator<<(const std::exception& error) noexcept { return *this << error.what(); }

  /// Integers in decimal, the character-sized ones too; floats as the shortest text that reads back the same.
  template <class Number>
  requires std::integral<Number> || std::floating_point<Number> LogStream& operator<<(Number value) noexcept {
    if (enabled_ && !full_) AppendNumber(value);
    return *this;
  }

  /// An enumeration prints as its number.
  template <class Enumeration>
  requires std::is_enum_v<Enumeration> LogStream& operator<<(Enumeration value) noexcept {
    return *this << +static_cast<std::underlying_type_t<Enumeration>>(value);
  }

  /// An address in a log line is always a slip.
  LogStream& operator<<(const void*) = delete;

 private:
  void Append(std::string_view text) noexcept;

  template <class Number>
  void AppendNumber(Number value) noexcept {
    const auto [end, error] = std::to_chars(text_ + size_, text_ + kLineLimit, value);
    if (error == std::errc{}) {
      size_ = static_cast<std::size_t>(end - text_);
    } else {
      full_ = true;  // half a number would be another number
    }
  }

  const Logger& logger_;
  const LogLevel level_;
  const bool enabled_;
  bool full_ = false;
  std::size_t size_ = 0;
  const char* begin_ = text_;  // of the line: a whole one stands elsewhere
  char text_[kLineLimit];      // left uninitialised: only the first size_ bytes are ever read
};

}  // namespace ara::log
