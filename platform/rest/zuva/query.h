#pragma once

#include <boost/system/result.hpp>
#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "ara/rest/ogm.h"

namespace zuva {

namespace ogm = ara::rest::ogm;

/// The query of a request, decoded: `?identity`, `?specification`, equality filters that are all to hold, and a projection.
struct Query {
  struct Filter {
    std::string name;
    std::string value;
  };

  /// Filters and names of fields together that a query may have; a client does not make the others wait with a longer one.
  static constexpr std::size_t kMostTerms = 64;

  bool identity = false;
  bool specification = false;
  bool projected = false;           ///< `fields` was given, maybe empty
  std::vector<Filter> filters;      ///< name and value, each compared with a scalar of the element
  std::vector<std::string> fields;  ///< what to show; `id` and `uri` are always shown

  /// Whole documents of all elements are wanted.
  bool IsPlain() const noexcept { return filters.empty() && !projected; }
  /// Every filter names a scalar field of the tree whose JSON text, or plain text for a string, is the filter's value.
  bool Accepts(const ogm::Object& tree) const;
  /// Appends the tree, or what the projection leaves of it, as JSON.
  void WriteTo(std::string& out, const ogm::Object& tree) const;
};

/// A request target in origin form, such as "/Service/resource?type=popup", taken apart.
struct Target {
  std::string_view path;  ///< as it was given, into the caller's text
  Query query;
};

/// Fails on a percent escape that is none, and on a fragment. Without a query nothing is allocated.
boost::system::result<Target> ParseTarget(std::string_view text);
/// The part behind the question mark. Fails likewise, and on more than `kMostTerms` terms.
boost::system::result<Query> ParseQuery(std::string_view text);

}  // namespace zuva
