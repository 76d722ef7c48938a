#include "xr/com/wire/session.h"

#include <algorithm>

namespace xr::com::wire {
namespace {

/// The peer's entry, moved to the front of the list; made if it is not there, at the cost of the last one when the list is full.
template <class Peer>
Peer& touch(std::list<Peer>& peers, const Endpoint& endpoint) {
  const auto found = std::find_if(peers.begin(), peers.end(), [&](const Peer& peer) { return peer.endpoint == endpoint; });
  if (found != peers.end()) {
    peers.splice(peers.begin(), peers, found);
    return peers.front();
  }
  if (peers.size() == kMaximumPeers) peers.pop_back();
  peers.emplace_front();
  peers.front().endpoint = endpoint;
  return peers.front();
}

bool is_reboot(Session before, Session now) {
  return now.reboot && (!before.reboot || before.id >= now.id);
}

}  // namespace

Session Session_counter::next() noexcept {
  if (id_ == 0xFFFF) {
    id_ = 0;
    reboot_ = false;
  }
  return {++id_, reboot_};
}

Session Outgoing_sessions::next_unicast(const Endpoint& peer) {
  return touch(peers_, peer).counter.next();
}

bool Reboot_detection::received(const Endpoint& endpoint, Direction direction, Session session) {
  auto& peer = touch(peers_, endpoint);
  auto& before = last(peer, direction);
  const bool rebooted = before.id != 0 && is_reboot(before, session);
  if (rebooted) peer.multicast = peer.unicast = {0, false};
  before = session;
  return rebooted;
}

bool Reboot_detection::is_first(const Endpoint& endpoint, Direction direction) const {
  const auto found = std::find_if(peers_.begin(), peers_.end(), [&](const Peer& peer) { return peer.endpoint == endpoint; });
  return found != peers_.end() && (direction == Direction::multicast ? found->multicast : found->unicast).id == 0;
}

void Reboot_detection::restarted(const Endpoint& endpoint, Direction direction, Session session) {
  auto& peer = touch(peers_, endpoint);
  peer.multicast = peer.unicast = {0, false};
  last(peer, direction) = session;
}

}  // namespace xr::com::wire
