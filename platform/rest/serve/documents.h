#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <string_view>

#include "zuva/rendered.h"

namespace zuva::serve {

/// The files below one folder, for paths that no service owns. Read when they are asked for and kept until they change on the disk, as far
/// as the room goes. I/O thread only, but for the constructor.
class Documents {
 public:
  /// Files beyond this size are not served, since they are read as a whole; nor is more than this kept.
  static constexpr std::size_t kMostBytes = std::size_t{16} * 1024 * 1024;

  /// Throws `ConfigError` if the path, taken below `ARA_ROOT`, is no folder.
  explicit Documents(const std::string& root);

  /// The regular file under this path of a request, with its head; nothing if there is none, if a name on the way begins with a dot, or if
  /// it lies outside the folder, links followed.
  std::shared_ptr<const Rendered> Find(std::string_view requestPath);

  /// Whether a client with this `Accept` field would rather read HTML than JSON (RFC 9110 section 12.5.1).
  static bool PrefersHtml(std::string_view accept);

 private:
  /// Tells a file's content from an earlier one of the same name.
  struct Stamp {
    std::uint64_t device, inode, size;
    std::int64_t seconds, nanoseconds;
    friend bool operator==(const Stamp&, const Stamp&) = default;
  };
  struct Kept {
    Stamp stamp;
    std::shared_ptr<const Rendered> document;
  };

  std::string PlaceOf(std::string_view requestPath) const;
  std::shared_ptr<const Rendered> Keep(const std::string& place, const Stamp& stamp, std::string content);

  std::string root_;  // canonical
  std::map<std::string, Kept> kept_;
  std::size_t keptBytes_ = 0;
};

}  // namespace zuva::serve
