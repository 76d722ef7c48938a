#include "serve/subscription_index.h"

#include <algorithm>
#include <string>
#include <utility>
#include <vector>

#include "ara/rest/serialize/json_writer.h"
#include "serve/frames.h"

namespace zuva::serve {
namespace {

void KeepOneOfEach(std::vector<Subscriber*>& subscribers) {
  std::sort(subscribers.begin(), subscribers.end());
  subscribers.erase(std::unique(subscribers.begin(), subscribers.end()), subscribers.end());
}

}  // namespace

std::unique_ptr<Subscription> SubscriptionIndex::Subscribe(Subscriber& subscriber, std::string_view id,
                                                           const Server::Destination& destination, Query query, std::string_view path) {
  queue_.Listen(true);  // before the snapshot, so that nothing falls between the two
  auto subscription = std::make_unique<Subscription>();
  subscription->subscriber = &subscriber;
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

void SubscriptionIndex::End(Subscription& subscription) {
  subscription.subscriber->GetOutbox().Forget(&subscription);
  for (const auto& seat : subscription.seats) seat->node->Leave(subscription);
  subscription.seats.clear();
  std::erase_if(nodes_, [](const auto& node) { return node.second->IsEmpty(); });
  if (nodes_.empty()) queue_.Listen(false);
}

void SubscriptionIndex::Drain() {
  const auto batch = queue_.Take();
  std::vector<Subscriber*> touched;
  for (const auto& change : batch.changes) {
    const auto node = nodes_.find(change.resource.get());
    if (node != nodes_.end()) node->second->Tell(change, touched);
  }
  KeepOneOfEach(touched);
  for (auto* subscriber : touched) subscriber->Flush();
  if (batch.lost) TellLost();
}

ResourceNode& SubscriptionIndex::NodeOf(const std::shared_ptr<ServerResource>& resource) {
  auto& node = nodes_[resource.get()];
  if (!node) node = std::make_unique<ResourceNode>(resource);
  return *node;
}

void SubscriptionIndex::TellLost() {
  std::vector<Subscriber*> all;
  for (const auto& [resource, node] : nodes_) {
    for (const auto* seat : node->Seats()) all.push_back(seat->subscription->subscriber);
  }
  KeepOneOfEach(all);
  for (auto* subscriber : all) subscriber->OnLost();
}

}  // namespace zuva::serve
