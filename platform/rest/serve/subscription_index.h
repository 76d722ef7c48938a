#pragma once

#include <cstddef>
#include <memory>
#include <optional>
#include <string_view>
#include <unordered_map>

#include "serve/change_queue.h"
#include "serve/resource_node.h"
#include "serve/subscription.h"
#include "zuva/server.h"

namespace zuva::serve {

/// Where all subscriptions of a server stand, each at the node of its resource or, for a service, at those of all its resources.
/// I/O thread only.
class SubscriptionIndex {
 public:
  explicit SubscriptionIndex(ChangeQueue& queue) : queue_{queue} {}

  /// Starts a subscription to what the path leads to, which is an element, a resource or a service, and puts the snapshot into the
  /// subscriber's outbox. From then on the subscriber is told until the subscription is ended, which must be before the subscriber goes.
  /// After an exception there is no subscription.
  std::unique_ptr<Subscription> Subscribe(Subscriber& subscriber, std::string_view id, const Server::Destination& destination, Query query,
                                          std::string_view path);
  /// Harmless when repeated.
  void End(Subscription& subscription) noexcept;

  /// Passes on all changes that have gathered, and lets the subscribers that they concern send. Where something cannot be passed on, the
  /// subscribers concerned are ended by `OnLost`, and the rest goes on.
  void Drain() noexcept;
  /// What to send for a mark; nothing if the client knows it all.
  static std::optional<Frame> Render(const Mark& mark) { return mark.seat->node->Render(mark); }

 private:
  ResourceNode& NodeOf(const std::shared_ptr<ServerResource>& resource);
  void Tell(const Change& change) noexcept;
  void TellLost() noexcept;

  ChangeQueue& queue_;
  std::unordered_map<const ServerResource*, std::unique_ptr<ResourceNode>> nodes_;  // those with subscriptions
  std::size_t subscriptions_ = 0;
  Touched touched_;
};

}  // namespace zuva::serve
