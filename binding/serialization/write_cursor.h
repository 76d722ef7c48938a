#pragma once

#include "binding/serialization/byte_order.h"
#include "model/structure_tag.h"

#include <cstddef>
#include <cstdint>
#include <cstring>

namespace xr::com::someip::serialization::detail {

/// Writes into bytes whose number was worked out beforehand, so that it need not check for room.
class Write_cursor {
 public:
  Write_cursor(unsigned char* position, bool littleEndian) : position_{position}, littleEndian_{littleEndian} {}

  unsigned char* position() const { return position_; }

  template <Scalar T>
  void put(T value) {
    store(position_, value, littleEndian_);
    position_ += sizeof(T);
  }

  void put_bytes(const void* from, std::size_t count) {
    if (count > 0) std::memcpy(position_, from, count);
    position_ += count;
  }

  void put_tag(Structure_tag tag) { put_bytes(tag.bytes().data(), tag.bytes().size()); }

  /// `size` and `value` have passed `check_length_fits`.
  void put_length(std::size_t size, std::size_t value) {
    switch (size) {
      case 1:
        put(static_cast<std::uint8_t>(value));
        break;
      case 2:
        put(static_cast<std::uint16_t>(value));
        break;
      case 4:
        put(static_cast<std::uint32_t>(value));
        break;
      default:
        break;
    }
  }

 private:
  unsigned char* position_;
  bool littleEndian_;
};

}  // namespace xr::com::someip::serialization::detail
