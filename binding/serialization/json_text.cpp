#include "binding/serialization/json_text.h"

#include <charconv>
#include <cmath>
#include <cstddef>
#include <stdexcept>

namespace xr::com::json {
namespace {

constexpr unsigned char kFirstBeyondAscii = 0x80;

/// Bytes of the UTF-8 character that begins here, or 0 if none does (RFC 3629: no overlong form, no surrogate, nothing past U+10FFFF).
std::size_t character_size(std::string_view text) {
  const auto byte = [text](std::size_t place) { return place < text.size() ? static_cast<unsigned char>(text[place]) : 0U; };
  const auto follows = [byte](std::size_t place, unsigned from = 0x80, unsigned to = 0xBF) {
    return byte(place) >= from && byte(place) <= to;
  };
  const auto first = byte(0);
  if (first < kFirstBeyondAscii) return 1;
  if (first >= 0xC2 && first <= 0xDF) return follows(1) ? 2 : 0;
  if (first >= 0xE0 && first <= 0xEF) {
    const bool second = follows(1, first == 0xE0 ? 0xA0 : 0x80, first == 0xED ? 0x9F : 0xBF);
    return second && follows(2) ? 3 : 0;
  }
  if (first >= 0xF0 && first <= 0xF4) {
    const bool second = follows(1, first == 0xF0 ? 0x90 : 0x80, first == 0xF4 ? 0x8F : 0xBF);
    return second && follows(2) && follows(3) ? 4 : 0;
  }
  return 0;
}

void append_escaped(std::string& to, char character) {
  constexpr std::string_view kDigits = "0123456789abcdef";
  switch (character) {
    case '"':
      to += "\\\"";
      break;
    case '\\':
      to += "\\\\";
      break;
    case '\b':
      to += "\\b";
      break;
    case '\f':
      to += "\\f";
      break;
    case '\n':
      to += "\\n";
      break;
    case '\r':
      to += "\\r";
      break;
    case '\t':
      to += "\\t";
      break;
    default:
      if (static_cast<unsigned char>(character) >= 0x20) {
        to += character;
        break;
      }
      to += "\\u00";
      to += kDigits[static_cast<unsigned char>(character) >> 4U];
      to += kDigits[static_cast<unsigned char>(character) & 0xFU];
  }
}

}  // namespace

void Json_text::key(std::string_view name) {
  separate();
  text_.append("\"").append(name).append("\":");
  comma_ = false;
}

void Json_text::value(bool flag) {
  separate();
  text_ += flag ? "true" : "false";
}

void Json_text::value(std::uint64_t number) {
  put_number(number);
}

void Json_text::value(std::int64_t number) {
  put_number(number);
}

void Json_text::value(double number) {
  if (std::isfinite(number)) {
    put_number(number);
    return;
  }
  separate();
  text_ += "null";
}

void Json_text::value(std::string_view text) {
  separate();
  text_ += '"';
  while (!text.empty()) {
    const auto size = character_size(text);
    if (size == 0) throw std::invalid_argument{"Not UTF-8"};
    if (size == 1) {
      append_escaped(text_, text.front());
    } else {
      text_ += text.substr(0, size);
    }
    text.remove_prefix(size);
  }
  text_ += '"';
}

void Json_text::separate() {
  if (comma_) text_ += ',';
  comma_ = true;
}

void Json_text::open(char bracket) {
  separate();
  text_ += bracket;
  comma_ = false;
}

void Json_text::close(char bracket) {
  text_ += bracket;
  comma_ = true;
}

template <class Number>
void Json_text::put_number(Number number) {
  constexpr std::size_t kLongest = 32;
  char digits[kLongest];
  separate();
  text_.append(digits, std::to_chars(digits, digits + kLongest, number).ptr);
}

}  // namespace xr::com::json
