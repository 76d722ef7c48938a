#include "ara/rest/serialize/json_writer.h"

#include <charconv>
#include <cmath>
#include <cstddef>
#include <limits>

namespace ara::rest::serialize {
namespace {

constexpr std::string_view kReplacement = "\xEF\xBF\xBD";

template <class Number>
void WriteNumber(std::string& out, Number number) {
  char text[32];
  const auto end = std::to_chars(std::begin(text), std::end(text), number).ptr;
  out.append(text, end);
}

void WriteReal(std::string& out, double value) {
  if (!std::isfinite(value)) {
    out += "null";
  } else if (std::fabs(value) <= static_cast<double>(std::numeric_limits<float>::max())) {
    WriteNumber(out, static_cast<float>(value));
  } else {
    WriteNumber(out, value);
  }
}

bool IsContinuation(char byte) {
  return (static_cast<unsigned char>(byte) & 0xC0) == 0x80;
}

// Length of the well-formed sequence (RFC 3629) at the start of the text, 0 if there is none.
std::size_t SequenceLength(std::string_view text) {
  const auto first = static_cast<unsigned char>(text[0]);
  if (first < 0x80) return 1;
  const std::size_t length = first < 0xC2 ? 0 : first < 0xE0 ? 2 : first < 0xF0 ? 3 : first < 0xF5 ? 4 : 0;
  if (length == 0 || text.size() < length) return 0;
  for (std::size_t i = 1; i != length; ++i) {
    if (!IsContinuation(text[i])) return 0;
  }
  const auto second = static_cast<unsigned char>(text[1]);
  const bool overlong = (first == 0xE0 && second < 0xA0) || (first == 0xF0 && second < 0x90);
  const bool surrogate = first == 0xED && second > 0x9F;
  const bool beyond = first == 0xF4 && second > 0x8F;
  return overlong || surrogate || beyond ? 0 : length;
}

bool NeedsEscape(char character) {
  return static_cast<unsigned char>(character) < 0x20 || character == '"' || character == '\\';
}

void WriteEscaped(std::string& out, char character) {
  constexpr char kDigits[] = "0123456789abcdef";
  switch (character) {
    case '"':
      out += "\\\"";
      return;
    case '\\':
      out += "\\\\";
      return;
    case '\b':
      out += "\\b";
      return;
    case '\f':
      out += "\\f";
      return;
    case '\n':
      out += "\\n";
      return;
    case '\r':
      out += "\\r";
      return;
    case '\t':
      out += "\\t";
      return;
    default:
      break;
  }
  const auto code = static_cast<unsigned char>(character);
  out += "\\u00";
  out += kDigits[code >> 4];
  out += kDigits[code & 15];
}

}  // namespace

void WriteString(std::string& out, std::string_view text) {
  out += '"';
  std::size_t plain = 0;  // length of what can be appended as it is
  while (plain != text.size()) {
    const auto length = SequenceLength(text.substr(plain));
    if (length != 0 && !NeedsEscape(text[plain])) {
      plain += length;
      continue;
    }
    out.append(text.substr(0, plain));
    if (length == 0) {
      out.append(kReplacement);
    } else {
      WriteEscaped(out, text[plain]);
    }
    text.remove_prefix(plain + 1);
    plain = 0;
  }
  out.append(text);
  out += '"';
}

void Write(std::string& out, const ogm::Value& value) {
  switch (value.GetType()) {
    case ogm::Kind::Object: {
      char separator = '{';
      for (const auto& field : static_cast<const ogm::Object&>(value)) {
        out += std::exchange(separator, ',');
        WriteString(out, field.GetName());
        out += ':';
        if (field.HasValue()) {
          Write(out, field.GetValue());
        } else {
          out += "null";
        }
      }
      out += separator == '{' ? "{}" : "}";
      return;
    }
    case ogm::Kind::Array: {
      char separator = '[';
      for (const auto& item : static_cast<const ogm::Array&>(value)) {
        out += std::exchange(separator, ',');
        Write(out, item);
      }
      out += separator == '[' ? "[]" : "]";
      return;
    }
    case ogm::Kind::Int:
      return WriteNumber(out, static_cast<const ogm::Int&>(value).GetValue());
    case ogm::Kind::Real:
      return WriteReal(out, static_cast<const ogm::Real&>(value).GetValue());
    case ogm::Kind::String:
      return WriteString(out, static_cast<const ogm::String&>(value).GetValue());
    case ogm::Kind::Bool:
      out += static_cast<const ogm::Bool&>(value).GetValue() ? "true" : "false";
      return;
    case ogm::Kind::Null:
    case ogm::Kind::Field:
      out += "null";
      return;
  }
}

std::string ToText(const ogm::Value& value) {
  std::string out;
  Write(out, value);
  return out;
}

}  // namespace ara::rest::serialize
