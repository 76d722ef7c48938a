#include "tools/vehicle/server/subscriber_list.h"

#include <algorithm>

namespace vehicle {

std::string ToText(const Endpoint& endpoint) {
  return (endpoint.protocol == xr::com::wire::Protocol::tcp ? "tcp:" : "udp:") + endpoint.address.to_string() + ":" +
         std::to_string(endpoint.port);
}

bool SubscriberList::Accept(Subscription subscription, Time now) {
  const auto same = std::find_if(all_.begin(), all_.end(), [&](const Subscription& other) {
    return other.field == subscription.field && other.subscriber == subscription.subscriber;
  });
  if (same == all_.end()) {
    all_.push_back(std::move(subscription));
    return true;
  }
  const bool hadRunOut = same->until < now;
  *same = std::move(subscription);
  return hadRunOut;
}

std::vector<Endpoint> SubscriberList::Of(std::string_view field, Time now) const {
  std::vector<Endpoint> found;
  for (const auto& subscription : all_)
    if (subscription.field == field && subscription.until >= now) found.push_back(subscription.subscriber);
  return found;
}

}  // namespace vehicle
