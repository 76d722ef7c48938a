#include "tools/vehicle/values/field_codec.h"

#include "tools/vehicle/values/scalar_json.h"

#include <algorithm>
#include <cctype>

namespace vehicle {

const FieldCodec& CodecOf(std::string_view field, const Place& place) {
  const auto codecs = FieldCodecs();
  const auto found = std::find_if(codecs.begin(), codecs.end(), [field](const FieldCodec& codec) { return codec.field == field; });
  if (found == codecs.end()) throw BadInput{place, "no such field"};
  return *found;
}

Bytes BytesFromHex(const nlohmann::json& value, const Place& place) {
  std::string digits = TextFromJson(value, place);
  std::erase(digits, ' ');
  const bool allHex = std::all_of(digits.begin(), digits.end(), [](unsigned char c) { return std::isxdigit(c) != 0; });
  if (!allHex || digits.size() % 2 != 0) throw BadInput{place, "pairs of hexadecimal digits are expected"};
  Bytes bytes;
  for (std::size_t i = 0; i < digits.size(); i += 2)
    bytes.push_back(static_cast<unsigned char>(std::stoul(digits.substr(i, 2), nullptr, 16)));
  return bytes;
}

std::string HexFromBytes(const Bytes& bytes) {
  constexpr std::string_view kDigits = "0123456789abcdef";
  std::string text;
  for (const unsigned byte : bytes) {
    if (!text.empty()) text += ' ';
    text += {kDigits[byte / 16], kDigits[byte % 16]};
  }
  return text;
}

}  // namespace vehicle
