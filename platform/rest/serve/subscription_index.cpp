#include "serve/subscription_index.h"

#include <exception>
#include <string>
#include <utility>

#include "ara/rest/serialize/json_writer.h"
#include "serve/frames.h"

namespace zuva::serve {

void Touched::FlushAll() noexcept {
  for (auto* const subscriber : list_) {
    subscriber->isTouched_ = false;
    bool lost = std::exchange(subscriber->hasLost_, false);
    try {
      if (!lost) subscriber->Flush();
    } catch (const std::exception&) {  // what it holds may be cut off in the middle
      lost = true;
    }
    try {
      if (lost) subscriber->OnLost();
    } catch (const std::exception&) {  // its subscriptions have ended, and its connection times out
    }
  }
  list_.clear();
}

Subscription::~Subscription() {
  if (index) index->End(*this);
}

std::unique_ptr<Subscription> SubscriptionIndex::Subscribe(Subscriber& subscriber, std::string_view id,
                                                           const Server::Destination& destination, Query query, std::string_view path) {
  touched_.Reserve(subscriptions_ + 1);
  auto subscription = std::make_unique<Subscription>();
  subscription->subscriber = &subscriber;
  subscription->index = this;
  ++subscriptions_;
  queue_.Listen(true);  // before the snapshot, so that nothing falls between the two
  subscription->prefix = SubscriptionPrefix(id);
  subscription->query = std::move(query);
  std::string data;
  if (destination.element) {
    subscription->elementPath = destination.element->GetUri().ToString();
    data = NodeOf(destination.resource).Join(*subscription);
    if (data.empty()) data = "null";  // gone in the meantime
  } else if (destination.resource) {
    data = "[" + NodeOf(destination.resource).Join(*subscription) + "]";
  } else {
    for (const auto& resource : destination.service->GetResources()) {
      data += data.empty() ? '{' : ',';
      ara::rest::serialize::WriteString(data, resource->GetName());
      data.append(":[").append(NodeOf(resource).Join(*subscription)).append("]");
    }
    data += data.empty() ? "{}" : "}";
  }
  subscriber.GetOutbox().Push(Frame{subscription->prefix, EventTail("snapshot", path, data)}, subscription.get());
  return subscription;
}

void SubscriptionIndex::End(Subscription& subscription) noexcept {
  if (!std::exchange(subscription.index, nullptr)) return;
  --subscriptions_;
  subscription.subscriber->GetOutbox().Forget(&subscription);
  for (const auto& seat : subscription.seats) seat->node->Leave(subscription);
  subscription.seats.clear();
  std::erase_if(nodes_, [](const auto& node) { return node.second->IsEmpty(); });
  if (nodes_.empty()) queue_.Listen(false);
}

void SubscriptionIndex::Drain() noexcept {
  const auto batch = queue_.Take();
  for (const auto& change : batch.changes) Tell(change);
  if (batch.lost) TellLost();
  touched_.FlushAll();
}

void SubscriptionIndex::Tell(const Change& change) noexcept {
  const auto node = nodes_.find(change.resource.get());
  if (node == nodes_.end()) return;
  try {
    node->second->Tell(change, touched_);
  } catch (const std::exception&) {  // nobody knows which of them have it
    node->second->TellLost(touched_);
  }
}

ResourceNode& SubscriptionIndex::NodeOf(const std::shared_ptr<ServerResource>& resource) {
  const auto found = nodes_.find(resource.get());
  if (found != nodes_.end()) return *found->second;
  return *nodes_.emplace(resource.get(), std::make_unique<ResourceNode>(resource)).first->second;
}

void SubscriptionIndex::TellLost() noexcept {
  for (const auto& [resource, node] : nodes_) node->TellLost(touched_);
}

}  // namespace zuva::serve
