#include "ara/rest/uuid.h"

#include <algorithm>
#include <boost/uuid/name_generator_sha1.hpp>
#include <boost/uuid/random_generator.hpp>
#include <boost/uuid/uuid.hpp>

namespace ara::rest {
namespace {

constexpr std::size_t kTextLength = 36;
constexpr char kDigits[] = "0123456789abcdef";

constexpr bool IsDash(std::size_t position) {
  return position == 8 || position == 13 || position == 18 || position == 23;
}

Uuid FromBoost(const boost::uuids::uuid& uuid) {
  std::array<std::uint8_t, 16> bytes;
  std::copy(uuid.begin(), uuid.end(), bytes.begin());
  return Uuid{bytes};
}

// 16 for anything that is no digit.
constexpr unsigned Digit(char character) noexcept {
  if (character >= '0' && character <= '9') return static_cast<unsigned>(character - '0');
  if (character >= 'a' && character <= 'f') return static_cast<unsigned>(character - 'a' + 10);
  if (character >= 'A' && character <= 'F') return static_cast<unsigned>(character - 'A' + 10);
  return 16;
}

}  // namespace

Uuid Uuid::MakeV4() {
  return FromBoost(boost::uuids::random_generator{}());
}

Uuid Uuid::MakeV5(std::string_view name) {
  return FromBoost(boost::uuids::name_generator_sha1{boost::uuids::ns::url()}(name.data(), name.size()));
}

std::optional<Uuid> Uuid::Parse(std::string_view text) noexcept {
  if (text.size() != kTextLength) return std::nullopt;
  std::array<std::uint8_t, 16> bytes;
  std::size_t count = 0;
  for (std::size_t i = 0; i < kTextLength;) {
    if (IsDash(i)) {
      if (text[i++] != '-') return std::nullopt;
      continue;
    }
    const unsigned high = Digit(text[i]);
    const unsigned low = Digit(text[i + 1]);
    if (high > 15 || low > 15) return std::nullopt;
    bytes[count++] = static_cast<std::uint8_t>(high << 4 | low);
    i += 2;
  }
  return Uuid{bytes};
}

std::string Uuid::ToString() const {
  std::string text;
  text.reserve(kTextLength);
  for (const auto byte : bytes_) {
    if (IsDash(text.size())) text += '-';
    text += kDigits[byte >> 4];
    text += kDigits[byte & 15];
  }
  return text;
}

}  // namespace ara::rest
