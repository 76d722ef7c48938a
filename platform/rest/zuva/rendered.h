#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

#include "ara/rest/ogm.h"

namespace zuva {

namespace ogm = ara::rest::ogm;

/// A body ready to be sent. Never changed once made, but for the slot of the serving side.
struct Rendered {
  std::uint64_t version = 0;                ///< content version that was read before the text was made: the text is at least as new
  std::string body;                         ///< JSON
  std::string etag;                         ///< strong entity tag (RFC 9110), quotes included
  std::shared_ptr<const ogm::Object> tree;  ///< what an element's body was written from; null for anything else
  mutable std::string head;                 ///< the serving side's: the response head that goes with the body. I/O thread only
};

/// Renders one tree, and keeps it beside its text.
std::shared_ptr<const Rendered> MakeRendered(std::uint64_t version, ara::rest::Pointer<ogm::Object> tree);
/// Takes a text as it is.
std::shared_ptr<const Rendered> MakeRendered(std::uint64_t version, std::string body);

/// The entity tag of a body: a 64-bit hash of its bytes.
std::string MakeEtag(std::string_view body);
/// How entity tags are compared (RFC 9110 section 8.8.3.2): strongly a weak one equals none.
enum class EtagComparison : std::uint8_t { kWeak, kStrong };
/// Whether an `If-Match` or `If-None-Match` field (RFC 9110 section 13.1: a list of tags, or "*") names the present tag.
bool NamesEtag(std::string_view field, std::string_view etag, EtagComparison comparison) noexcept;

}  // namespace zuva
