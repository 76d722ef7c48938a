#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace ara::rest {

/// The segments of a request's path: "/service/resource/element", each but the present ones empty. Views into the text that was split.
struct Matches {
  std::string_view service;
  std::string_view resource;
  std::string_view element;

  /// Nothing for a path that can't belong to anybody: no leading slash, an empty segment, a trailing slash, more than three segments.
  static std::optional<Matches> Split(std::string_view path) noexcept {
    if (path.empty() || path.front() != '/') return std::nullopt;
    std::array<std::string_view, 3> segments;
    path.remove_prefix(1);
    if (path.empty()) return Matches{};
    for (std::size_t count = 0;; ++count) {
      if (count == segments.size()) return std::nullopt;
      const auto end = path.find('/');
      segments[count] = path.substr(0, end);
      if (segments[count].empty()) return std::nullopt;
      if (end == std::string_view::npos) return Matches{segments[0], segments[1], segments[2]};
      path.remove_prefix(end + 1);
    }
  }
};

/// The paths that endpoints answer, in the order in which they were offered. The walk over the object tree finds them; this names them.
class Router {
 public:
  void Add(std::string path) { paths_.push_back(std::move(path)); }
  void Add(const Router& other) { paths_.insert(paths_.end(), other.paths_.begin(), other.paths_.end()); }
  void Remove(std::string_view path) {
    std::erase_if(paths_, [&](const std::string& own) { return own == path; });
  }
  bool Has(std::string_view path) const { return std::find(paths_.begin(), paths_.end(), path) != paths_.end(); }
  const std::vector<std::string>& GetPaths() const noexcept { return paths_; }

 private:
  std::vector<std::string> paths_;
};

}  // namespace ara::rest
