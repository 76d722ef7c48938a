#pragma once

#include "xr/com/wire/sd_message.h"

#include <chrono>
#include <string>
#include <string_view>
#include <vector>

namespace vehicle {

using xr::com::wire::Endpoint;

/// "udp:127.0.0.1:40001"
std::string ToText(const Endpoint& endpoint);

/// One accepted subscription of a field.
struct Subscription {
  std::string field;
  Endpoint subscriber;  ///< where its notifications go
  Endpoint owner;       ///< whose discovery message asked for it
  std::chrono::steady_clock::time_point until;
};

/// The accepted subscriptions of all fields, each until its time to live runs out. For one thread.
class SubscriberList {
 public:
  using Time = std::chrono::steady_clock::time_point;

  /// Takes a new subscription or the renewal of one that still lasts. True if it is new; one that has run out counts as new, since
  /// its subscriber has missed what came between.
  bool Accept(Subscription subscription, Time now);

  /// Takes away all for which the predicate holds, and gives them.
  template <class Predicate>
  std::vector<Subscription> Remove(Predicate&& predicate) {
    std::vector<Subscription> removed;
    std::erase_if(all_, [&](const Subscription& subscription) {
      const bool goes = predicate(subscription);
      if (goes) removed.push_back(subscription);
      return goes;
    });
    return removed;
  }

  /// The subscribers of a field whose time has not run out.
  std::vector<Endpoint> Of(std::string_view field, Time now) const;

 private:
  std::vector<Subscription> all_;
};

}  // namespace vehicle
