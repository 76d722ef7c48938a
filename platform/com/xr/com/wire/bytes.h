#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

/// Big-endian numbers in byte buffers. The readers' callers have checked that the bytes are there.
namespace xr::com::wire {

using Bytes = std::span<const unsigned char>;

inline std::uint16_t read16(Bytes bytes, std::size_t at) {
  return static_cast<std::uint16_t>(bytes[at] << 8 | bytes[at + 1]);
}

inline std::uint32_t read32(Bytes bytes, std::size_t at) {
  return static_cast<std::uint32_t>(read16(bytes, at)) << 16 | read16(bytes, at + 2);
}

inline void write16(std::span<unsigned char> bytes, std::size_t at, std::uint16_t value) {
  bytes[at] = static_cast<unsigned char>(value >> 8);
  bytes[at + 1] = static_cast<unsigned char>(value);
}

inline void write32(std::span<unsigned char> bytes, std::size_t at, std::uint32_t value) {
  write16(bytes, at, static_cast<std::uint16_t>(value >> 16));
  write16(bytes, at + 2, static_cast<std::uint16_t>(value));
}

inline void append16(std::vector<unsigned char>& bytes, std::uint16_t value) {
  bytes.push_back(static_cast<unsigned char>(value >> 8));
  bytes.push_back(static_cast<unsigned char>(value));
}

inline void append32(std::vector<unsigned char>& bytes, std::uint32_t value) {
  append16(bytes, static_cast<std::uint16_t>(value >> 16));
  append16(bytes, static_cast<std::uint16_t>(value));
}

}  // namespace xr::com::wire
