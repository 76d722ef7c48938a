#pragma once

#include "binding/proxy/event_base.h"
#include "xr/com/instance_id.h"

#include <functional>
#include <map>
#include <memory>
#include <mutex>

namespace xr::com::cpp_binding::proxy {

/// The events of one kind that proxies use now, by service instance: proxies of the same instance share the transport side.
class Event_links {
 public:
  using Maker = std::function<std::shared_ptr<Event_base>()>;

  /// The instance's event, made by `make` unless a proxy already has it. Any thread; `make` runs under the lock.
  std::shared_ptr<Event_base> link(const qe::com::runtime::Instance_id& instance, const Maker& make);

 private:
  std::mutex mutex_;  // guards events_
  std::map<qe::com::runtime::Instance_id, std::weak_ptr<Event_base>> events_;
};

}  // namespace xr::com::cpp_binding::proxy
