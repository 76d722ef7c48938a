#pragma once

#include <string>
#include <string_view>
#include <utility>

#include "ara/rest/allocator.h"

namespace ara::rest {

/// A URI reference (RFC 3986), absolute or a path alone; empty when made by default. Always well-formed: only the builder makes new ones.
class Uri {
 public:
  class Builder;

  Uri() = default;
  Uri(const Uri& other) = default;
  Uri(Uri&& other) noexcept = default;
  Uri(const Uri& other, Allocator*) : Uri{other} {}
  Uri& operator=(const Uri&) = default;
  Uri& operator=(Uri&&) noexcept = default;

  bool IsEmpty() const noexcept { return text_.empty(); }
  /// The text as it goes over the wire, or with percent escapes decoded.
  std::string ToString(bool encoded = true) const;
  /// The wire text, in place.
  std::string_view GetText() const noexcept { return text_; }

  bool operator==(const Uri&) const = default;

 private:
  explicit Uri(std::string text) : text_{std::move(text)} {}

  std::string text_;
};

/// Makes URIs from text.
class Uri::Builder {
 public:
  /// Gives an empty URI.
  explicit Builder(Allocator* allocator) : allocator_{allocator} {}
  Builder(std::string text, Allocator* allocator) : text_{std::move(text)}, allocator_{allocator} {}

  /// Throws `InvalidArgumentException` if the text is no URI reference, `LogicException` without an allocator.
  Uri ToUri() const;

 private:
  std::string text_;
  Allocator* allocator_;
};

}  // namespace ara::rest
