#pragma once

#include <array>
#include <cstdint>

namespace xr::com::someip::serialization {

/// How a tagged member lies on the wire (AUTOSAR PRS_SOMEIPProtocol, structured data with identifier and optional members).
enum class Wire_type : std::uint8_t {
  one_byte = 0,
  two_bytes = 1,
  four_bytes = 2,
  eight_bytes = 3,
  configured_length_field = 4,  // length field of the service's configured size
  one_byte_length_field = 5,
  two_byte_length_field = 6,
  four_byte_length_field = 7,
};

/// The tag before a member: two bytes in wire order, of which the top bit is reserved and ignored, the next three are the
/// wire type and the last twelve the data id.
class Structure_tag {
 public:
  using Wire_type = serialization::Wire_type;

  /// `dataId` is at most 0xFFF.
  constexpr Structure_tag(Wire_type wireType, std::uint16_t dataId)
      : bytes_{static_cast<std::uint8_t>(static_cast<unsigned>(wireType) << 4U | (dataId >> 8U & 0x0FU)),
               static_cast<std::uint8_t>(dataId & 0xFFU)} {}

  /// A tag as read from the wire.
  explicit constexpr Structure_tag(std::array<std::uint8_t, 2> wireOrder) : bytes_{wireOrder} {}

  constexpr std::uint16_t data_id() const { return static_cast<std::uint16_t>((bytes_[0] & 0x0FU) << 8U | bytes_[1]); }
  constexpr Wire_type wire_type() const { return static_cast<Wire_type>(bytes_[0] >> 4U & 0x07U); }
  constexpr const std::array<std::uint8_t, 2>& bytes() const { return bytes_; }

  friend constexpr bool operator==(const Structure_tag&, const Structure_tag&) = default;

 private:
  std::array<std::uint8_t, 2> bytes_;
};

static_assert(sizeof(Structure_tag) == 2);

}  // namespace xr::com::someip::serialization
