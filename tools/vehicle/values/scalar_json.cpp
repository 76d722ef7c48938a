#include "tools/vehicle/values/scalar_json.h"

#include <cmath>
#include <cstdio>

namespace vehicle {

namespace {

int HexDigit(char c) {
  if (c >= '0' && c <= '9') return c - '0';
  if (c >= 'a' && c <= 'f') return c - 'a' + 10;
  if (c >= 'A' && c <= 'F') return c - 'A' + 10;
  return -1;
}

constexpr bool DashBefore(std::size_t byte) {
  return byte == 4 || byte == 6 || byte == 8 || byte == 10;
}

}  // namespace

std::uint64_t UnsignedFromJson(const nlohmann::json& value, std::uint64_t maximum, const Place& place) {
  // A positive number out of a program's hands is signed in JSON's own terms, out of a text it is unsigned.
  if (!value.is_number_integer() || (!value.is_number_unsigned() && value.get<std::int64_t>() < 0))
    throw BadInput{place, "a whole number from 0 is expected, not " + value.dump()};
  const auto number = value.get<std::uint64_t>();
  if (number > maximum) throw BadInput{place, value.dump() + " is more than " + std::to_string(maximum)};
  return number;
}

float FloatFromJson(const nlohmann::json& value, const Place& place) {
  if (value == "nan") return std::numeric_limits<float>::quiet_NaN();
  if (value == "inf") return std::numeric_limits<float>::infinity();
  if (value == "-inf") return -std::numeric_limits<float>::infinity();
  if (!value.is_number()) throw BadInput{place, "a number is expected, not " + value.dump()};
  const auto number = value.get<double>();
  if (std::abs(number) > static_cast<double>(std::numeric_limits<float>::max()))
    throw BadInput{place, value.dump() + " does not fit a 32-bit float"};
  return static_cast<float>(number);
}

bool BoolFromJson(const nlohmann::json& value, const Place& place) {
  if (!value.is_boolean()) throw BadInput{place, "true or false is expected, not " + value.dump()};
  return value.get<bool>();
}

std::string TextFromJson(const nlohmann::json& value, const Place& place) {
  if (!value.is_string()) throw BadInput{place, "a text is expected, not " + value.dump()};
  return value.get<std::string>();
}

Uuid16 UuidFromJson(const nlohmann::json& value, const Place& place) {
  const auto text = TextFromJson(value, place);
  const auto wrong = [&] { return BadInput{place, "a UUID such as 00000000-0000-0000-0000-000000000001 is expected"}; };
  if (text.size() != 36) throw wrong();
  Uuid16 uuid{};
  std::size_t at = 0;
  for (std::size_t i = 0; i < uuid.size(); ++i) {
    if (DashBefore(i) && text[at++] != '-') throw wrong();
    const int high = HexDigit(text[at++]), low = HexDigit(text[at++]);
    if (high < 0 || low < 0) throw wrong();
    uuid[i] = static_cast<unsigned char>(high * 16 + low);
  }
  return uuid;
}

nlohmann::json FloatToJson(float value) {
  if (std::isnan(value)) return "nan";
  if (std::isinf(value)) return value > 0 ? "inf" : "-inf";
  return value;
}

std::string UuidToText(const Uuid16& uuid) {
  std::string text;
  for (std::size_t i = 0; i < uuid.size(); ++i) {
    if (DashBefore(i)) text += '-';
    char digits[3];
    (void)std::snprintf(digits, sizeof digits, "%02x", uuid[i]);
    text += digits;
  }
  return text;
}

}  // namespace vehicle
