#include "xr/com/transport/event_sinks.h"

#include <algorithm>
#include <utility>

namespace xr::com::transport {

void Event_sinks::add(std::uint16_t field, std::weak_ptr<Event_sink> sink) {
  const auto* key = sink.lock().get();
  const std::lock_guard lock{mutex_};
  auto& list = sinks_[field];
  const bool there = std::any_of(list.begin(), list.end(), [&](const Entry& entry) { return entry.key == key && !entry.sink.expired(); });
  if (!there) list.push_back({key, std::move(sink)});
}

void Event_sinks::remove(std::uint16_t field, const Event_sink* sink) {
  const std::lock_guard lock{mutex_};
  auto& list = sinks_[field];
  list.erase(std::remove_if(list.begin(), list.end(), [&](const Entry& entry) { return entry.key == sink || entry.sink.expired(); }),
             list.end());
}

bool Event_sinks::any(std::uint16_t field) const {
  const std::lock_guard lock{mutex_};
  return std::any_of(sinks_[field].begin(), sinks_[field].end(), [](const Entry& entry) { return !entry.sink.expired(); });
}

}  // namespace xr::com::transport
