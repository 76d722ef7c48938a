#pragma once

#include <array>
#include <compare>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <functional>
#include <optional>
#include <string>
#include <string_view>

namespace ara::rest {

/// A universally unique identifier (RFC 4122); nil when made by default. A plain value of 16 bytes in network order.
class Uuid {
 public:
  constexpr Uuid() noexcept = default;
  explicit constexpr Uuid(const std::array<std::uint8_t, 16>& bytes) noexcept : bytes_{bytes} {}

  /// Random (version 4), from the system's entropy.
  static Uuid MakeV4();
  /// Name-based (version 5, SHA-1) in the URL namespace: the same text gives the same identifier at every start.
  static Uuid MakeV5(std::string_view name);
  /// Takes the canonical form of 36 characters, in either case; nothing else. Allocates nothing.
  static std::optional<Uuid> Parse(std::string_view text) noexcept;

  const std::array<std::uint8_t, 16>& GetBytes() const noexcept { return bytes_; }
  /// The canonical form, in small letters.
  std::string ToString() const;

  auto operator<=>(const Uuid&) const = default;

 private:
  std::array<std::uint8_t, 16> bytes_{};
};

}  // namespace ara::rest

template <>
struct std::hash<ara::rest::Uuid> {
  std::size_t operator()(const ara::rest::Uuid& uuid) const noexcept {
    std::uint64_t high = 0;
    std::uint64_t low = 0;
    std::memcpy(&high, uuid.GetBytes().data(), sizeof high);
    std::memcpy(&low, uuid.GetBytes().data() + sizeof high, sizeof low);
    return static_cast<std::size_t>(high ^ (low * 0x9E3779B97F4A7C15ULL));
  }
};
