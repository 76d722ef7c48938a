#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <mutex>
#include <vector>

#include "xr/com/client_port.h"

namespace xr::com::transport {

/// Who wants the notifications of which field. Any thread.
class Event_sinks {
 public:
  using Event_sink = cpp_binding::proxy::Event_sink;

  explicit Event_sinks(std::size_t fields) : sinks_(fields) {}

  /// Once is enough: repeating it changes nothing.
  void add(std::uint16_t field, std::weak_ptr<Event_sink> sink);
  void remove(std::uint16_t field, const Event_sink* sink);

  /// Whether a living sink wants the field.
  bool any(std::uint16_t field) const;

  /// Calls `tell` with each living sink of the field, with no lock held. A sink removed before its turn is left out.
  template <class Tell>
  void for_each(std::uint16_t field, Tell tell) const {
    for (std::size_t i = 0;; ++i) {
      std::shared_ptr<Event_sink> sink;
      {
        const std::lock_guard lock{mutex_};
        if (i >= sinks_[field].size()) return;
        sink = sinks_[field][i].sink.lock();
      }
      if (sink) tell(*sink);
    }
  }

 private:
  struct Entry {
    const Event_sink* key;  // only compared
    std::weak_ptr<Event_sink> sink;
  };

  mutable std::mutex mutex_;  // guards the lists
  std::vector<std::vector<Entry>> sinks_;
};

}  // namespace xr::com::transport
