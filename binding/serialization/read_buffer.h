#pragma once

#include "binding/serialization/byte_order.h"
#include "binding/serialization/failures.h"

#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <vector>

namespace xr::com {

/// A position in received bytes. Does not own them; they must outlive it. Every read is checked before it happens.
class Read_buffer {
 public:
  explicit Read_buffer(const std::vector<unsigned char>& bytes) : begin_{bytes.data()}, size_{bytes.size()} {}
  explicit Read_buffer(std::vector<unsigned char>&&) = delete;

  std::size_t size() const { return size_; }
  std::size_t offset() const { return offset_; }
  std::size_t remaining() const { return size_ - offset_; }

  /// Fails with `std::out_of_range` if fewer than `count` bytes remain.
  void throw_if_out_of_range(std::size_t count) const {
    if (count > remaining()) someip::serialization::failures::read_beyond_end();
  }

  /// `offset` counts from the begin; `size()` itself is allowed. Fails with `std::out_of_range` past that.
  void seek_to(std::size_t offset) {
    if (offset > size_) someip::serialization::failures::seek_beyond_end();
    offset_ = offset;
  }

  void skip(std::size_t count) {
    throw_if_out_of_range(count);
    offset_ += count;
  }

  /// Whether the next two bytes are these; false too when fewer remain.
  bool starts_with(const std::array<unsigned char, 2>& pair) const { return remaining() >= 2 && is_next(pair); }

  /// Reads a value that stands behind two given bytes: one check for both, since most of a payload is of this kind.
  template <someip::serialization::Scalar T>
  bool read_if_behind(const std::array<unsigned char, 2>& pair, T& value, bool littleEndian) {
    if (remaining() < 2 + sizeof(T) || !is_next(pair)) return false;
    value = someip::serialization::load<T>(begin_ + offset_ + 2, littleEndian);
    offset_ += 2 + sizeof(T);
    return true;
  }

  template <someip::serialization::Scalar T>
  T read(bool littleEndian) {
    throw_if_out_of_range(sizeof(T));
    const T value = someip::serialization::load<T>(begin_ + offset_, littleEndian);
    offset_ += sizeof(T);
    return value;
  }

  void copy_to(void* destination, std::size_t count) {
    if (destination == nullptr) someip::serialization::failures::destination_missing();
    throw_if_out_of_range(count);
    if (count > 0) std::memcpy(destination, begin_ + offset_, count);
    offset_ += count;
  }

 private:
  bool is_next(const std::array<unsigned char, 2>& pair) const {
    std::array<unsigned char, 2> next;
    std::memcpy(next.data(), begin_ + offset_, next.size());
    return std::bit_cast<std::uint16_t>(next) == std::bit_cast<std::uint16_t>(pair);
  }

  const unsigned char* begin_;
  std::size_t size_;
  std::size_t offset_ = 0;
};

}  // namespace xr::com
