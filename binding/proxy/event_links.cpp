#include "binding/proxy/event_links.h"

namespace xr::com::cpp_binding::proxy {

std::shared_ptr<Event_base> Event_links::link(const qe::com::runtime::Instance_id& instance, const Maker& make) {
  const std::lock_guard lock{mutex_};
  std::erase_if(events_, [](const auto& entry) { return entry.second.expired(); });
  if (const auto found = events_.find(instance); found != events_.end()) {
    if (auto event = found->second.lock()) return event;
  }
  auto event = make();
  events_.insert_or_assign(instance, event);
  return event;
}

}  // namespace xr::com::cpp_binding::proxy
