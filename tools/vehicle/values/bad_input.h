#pragma once

#include <cstddef>
#include <stdexcept>
#include <string>
#include <string_view>

namespace vehicle {

/// Where in a JSON text something stands, as a JSON pointer (RFC 6901).
class Place {
 public:
  Place() = default;
  Place operator/(std::string_view member) const { return Place{pointer_ + '/' + std::string{member}}; }
  Place operator/(std::size_t index) const { return Place{pointer_ + '/' + std::to_string(index)}; }
  const std::string& Pointer() const { return pointer_; }

 private:
  explicit Place(std::string pointer) : pointer_{std::move(pointer)} {}
  std::string pointer_;
};

/// A scenario, a command or a value that is refused; the text tells place and reason.
class BadInput : public std::runtime_error {
 public:
  BadInput(const Place& place, std::string_view reason)
      : std::runtime_error{(place.Pointer().empty() ? "/" : place.Pointer()) + ": " + std::string{reason}} {}
  explicit BadInput(const std::string& reason) : std::runtime_error{reason} {}
};

}  // namespace vehicle
