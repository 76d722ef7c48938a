#pragma once

#include <array>
#include <chrono>
#include <cstddef>
#include <cstdint>

#include "ara/log/logging.h"
#include "xr/com/loggers.h"

namespace xr::com::transport {

/// Kinds of trouble that a peer can cause as often as it likes.
enum class Fault : std::uint8_t {
  malformed_discovery,
  bad_entry,
  too_many_instances,
  foreign_offer,
  malformed_datagram,
  foreign_datagram,
  segment,
  unusable_message,
  broken_stream,
  connection,
  send_failed,
  refused_subscription,
  count
};

/// Writes warnings, at most one a second of each kind, and tells how many of the kind were left out before it.
/// Belongs to the transport thread.
class Counted_warnings {
 public:
  /// `describe` gets the line's stream; it is called only if the line is written.
  template <class Describe>
  void warn(Fault fault, Describe&& describe) {
    auto& entry = entries_[static_cast<std::size_t>(fault)];
    const auto now = std::chrono::steady_clock::now();
    if (now < entry.next) {
      ++entry.untold;
      return;
    }
    auto line = cpp_binding::logger().LogWarn();
    describe(line);
    if (entry.untold > 0) line << " (and " << entry.untold << " more like it before)";
    entry = {now + std::chrono::seconds{1}, 0};
  }

 private:
  struct Entry {
    std::chrono::steady_clock::time_point next{};
    std::size_t untold = 0;
  };

  std::array<Entry, static_cast<std::size_t>(Fault::count)> entries_{};
};

}  // namespace xr::com::transport
