#pragma once

#include <compare>
#include <string>
#include <utility>

namespace qe::com::runtime {

/// Names one instance of a vehicle service in text form: "0x" and four lower-case hexadecimal digits.
class Instance_id {
 public:
  explicit Instance_id(std::string value) : value_{std::move(value)} {}

  const std::string& value() const noexcept { return value_; }

  // NOLINTNEXTLINE(modernize-use-nullptr): clang-tidy reads the 0 of the generated comparison
  friend auto operator<=>(const Instance_id&, const Instance_id&) = default;

 private:
  std::string value_;
};

}  // namespace qe::com::runtime
