#pragma once

#include "binding/serialization/serializer.h"

#include <array>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

/// A record with a member of each kind, and ids that are neither in order nor all below 256.
namespace binding_test {

using Bytes = std::vector<unsigned char>;
using xr::com::someip::serialization::Serialization_properties;
using Tag = xr::com::someip::serialization::Structure_tag;
using Uuid16 = xr::com::someip::serialization::Uuid16;

enum class Colour : std::uint32_t { red = 0, blue = 19 };

struct Link {
  std::uint16_t first = 0;
  std::uint16_t second = 0;
  Uuid16 uuid{};

  template <class V>
  void visit(V&& v) {
    v(first), v(second), v(uuid);
  }
  template <class V>
  void visit(V&& v) const {
    v(first), v(second), v(uuid);
  }
  bool operator==(const Link&) const = default;
};

struct Sample {
  qe::com::optional<Colour> colour;
  qe::com::optional<std::string> text;
  qe::com::optional<std::vector<Colour>> colours;
  qe::com::optional<Uuid16> uuid;
  qe::com::optional<Link> link;
  qe::com::optional<bool> flag;
  qe::com::optional<std::uint16_t> small;
  qe::com::optional<std::uint64_t> wide;
  qe::com::optional<float> real;

  static constexpr Tag kColour{Tag::Wire_type::four_bytes, 0}, kText{Tag::Wire_type::four_byte_length_field, 1},
      kColours{Tag::Wire_type::four_byte_length_field, 3}, kUuid{Tag::Wire_type::four_byte_length_field, 2},
      kLink{Tag::Wire_type::four_byte_length_field, 4}, kFlag{Tag::Wire_type::one_byte, 5}, kSmall{Tag::Wire_type::two_bytes, 6},
      kWide{Tag::Wire_type::eight_bytes, 0x2A5}, kReal{Tag::Wire_type::four_bytes, 7};

  static const std::array<Tag, 9>& get_tlv_tags() {
    static const std::array<Tag, 9> tags{kColour, kText, kColours, kUuid, kLink, kFlag, kSmall, kWide, kReal};
    return tags;
  }
  template <class V>
  void visit(V&& v) {
    each(*this, v);
  }
  template <class V>
  void visit(V&& v) const {
    each(*this, v);
  }
  bool operator==(const Sample&) const = default;

 private:
  template <class Self, class V>
  static void each(Self& self, V& v) {
    v(self.colour, kColour), v(self.text, kText), v(self.colours, kColours), v(self.uuid, kUuid), v(self.link, kLink);
    v(self.flag, kFlag), v(self.small, kSmall), v(self.wide, kWide), v(self.real, kReal);
  }
};

inline Sample FullSample() {
  Sample sample;
  sample.colour = Colour::blue;
  sample.text = std::string{"\xC3(\0", 3};  // not UTF-8, and a zero
  sample.colours = std::vector{Colour::blue, static_cast<Colour>(0xFFFFFFFF)};
  sample.uuid = Uuid16{1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15, 16};
  sample.link = Link{0x0102, 0xFFFE, Uuid16{0xAA}};
  sample.flag = true;
  sample.small = std::uint16_t{0x1234};
  sample.wide = 0x0123456789ABCDEFULL;
  sample.real = -12.5F;
  return sample;
}

/// Bytes written as hexadecimal digits; blanks are for the reader.
inline Bytes Hex(std::string_view digits) {
  const auto value = [](char digit) { return static_cast<unsigned>(digit <= '9' ? digit - '0' : digit - 'A' + 10); };
  Bytes bytes;
  for (std::size_t i = 0; i < digits.size(); i += digits[i] == ' ' ? 1 : 2) {
    if (digits[i] != ' ') bytes.push_back(static_cast<unsigned char>(value(digits[i]) << 4U | value(digits[i + 1])));
  }
  return bytes;
}

inline void AppendLength(Bytes& bytes, std::size_t length) {
  for (const unsigned shift : {24U, 16U, 8U, 0U}) bytes.push_back(static_cast<unsigned char>(length >> shift));
}

/// A field's payload with one record that has these members.
inline Bytes OneRecord(std::string_view members) {
  const auto body = Hex(members);
  Bytes bytes;
  AppendLength(bytes, body.size() + 4);
  AppendLength(bytes, body.size());
  bytes.insert(bytes.end(), body.begin(), body.end());
  return bytes;
}

inline Bytes Encoded(const std::vector<Sample>& field, const Serialization_properties& properties = {}) {
  Bytes bytes;
  xr::com::someip::serialization::serialize(bytes, field, properties);
  return bytes;
}

inline std::vector<Sample> Decoded(const Bytes& payload, const Serialization_properties& properties = {}) {
  return xr::com::someip::serialization::deserialize<Sample>(payload, properties);
}

}  // namespace binding_test
