#include "xr/com/transport/known_instances.h"

#include <algorithm>

namespace xr::com::transport {
namespace {

using Time = Known_instances::Time;

Time expiry_of(std::uint32_t ttl, Time now) {
  return ttl == wire::kTtlForever ? Time::max() : now + std::chrono::seconds{ttl};
}

}  // namespace

Known_instances::Change Known_instances::offer(Instance_key key, const Offer& offer, std::uint32_t ttl, Time now) {
  const auto known = position(key);
  if (known == entries_.end()) {
    if (entries_.size() == kMaximum) return Change::full;
    entries_.push_back({key, offer, expiry_of(ttl, now)});
    return Change::appeared;
  }
  if (known->offer.peer.address != offer.peer.address) return Change::foreign_host;
  const bool moved = !known->offer.same_endpoints(offer);
  known->offer = offer;
  known->expiry = expiry_of(ttl, now);
  return moved ? Change::moved : Change::repeated;
}

bool Known_instances::withdraw(Instance_key key, const wire::Endpoint& peer) {
  return remove_first([&](const Entry& entry) { return entry.key == key && entry.offer.peer.address == peer.address; }).has_value();
}

std::optional<Instance_key> Known_instances::expire(Time now) {
  return remove_first([&](const Entry& entry) { return entry.expiry <= now; });
}

std::optional<Time> Known_instances::next_expiry() const {
  auto next = Time::max();
  for (const auto& entry : entries_) next = std::min(next, entry.expiry);
  return next == Time::max() ? std::nullopt : std::optional{next};
}

std::optional<Instance_key> Known_instances::remove_of(const wire::Endpoint& peer) {
  return remove_first([&](const Entry& entry) { return entry.offer.peer == peer; });
}

const Offer* Known_instances::find(Instance_key key) const {
  const auto found = std::find_if(entries_.begin(), entries_.end(), [&](const Entry& entry) { return entry.key == key; });
  return found == entries_.end() ? nullptr : &found->offer;
}

std::vector<Known_instances::Entry>::iterator Known_instances::position(Instance_key key) {
  return std::find_if(entries_.begin(), entries_.end(), [&](const Entry& entry) { return entry.key == key; });
}

template <class Predicate>
std::optional<Instance_key> Known_instances::remove_first(Predicate predicate) {
  const auto found = std::find_if(entries_.begin(), entries_.end(), predicate);
  if (found == entries_.end()) return std::nullopt;
  const auto key = found->key;
  entries_.erase(found);
  return key;
}

}  // namespace xr::com::transport
