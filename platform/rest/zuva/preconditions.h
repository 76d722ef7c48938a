#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

#include "zuva/rendered.h"

namespace zuva {

/// What a request makes itself depend on (RFC 9110 section 13.1). Views into the request's head.
struct Preconditions {
  std::optional<std::string_view> ifMatch;  ///< lists of entity tags, or "*"
  std::string_view ifNoneMatch;             ///< empty: none

  bool AreGiven() const noexcept { return ifMatch || !ifNoneMatch.empty(); }
  /// Each holds where its field is absent. `etag` is that of the present representation.
  bool MatchHolds(std::string_view etag) const noexcept { return !ifMatch || NamesEtag(*ifMatch, etag, EtagComparison::kStrong); }
  bool NoneMatchHolds(std::string_view etag) const noexcept {
    return ifNoneMatch.empty() || !NamesEtag(ifNoneMatch, etag, EtagComparison::kWeak);
  }
};

/// What a client reads whose precondition failed.
inline constexpr std::string_view kPreconditionFailed = "The precondition does not hold for the present state";

}  // namespace zuva
