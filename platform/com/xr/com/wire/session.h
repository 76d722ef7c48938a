#pragma once

#include <cstddef>
#include <cstdint>
#include <list>

#include "xr/com/wire/sd_message.h"

/// Session ids and reboot detection of service discovery, per peer and direction (AUTOSAR PRS_SOMEIPSD_00253 to 00258).
namespace xr::com::wire {

/// How a discovery message travels; both directions count for themselves.
enum class Direction : std::uint8_t { multicast, unicast };

/// What a sender writes into its next message.
struct Session {
  std::uint16_t id;
  bool reboot;
};

/// Counts the messages to one destination: 1, 2, … 0xFFFF, 1 …; the reboot flag stands until the first return to 1.
class Session_counter {
 public:
  Session next() noexcept;

 private:
  std::uint16_t id_ = 0;
  bool reboot_ = true;
};

/// At most this many peers are remembered; the one not heard of for the longest time gives way.
inline constexpr std::size_t kMaximumPeers = 256;

/// The counters of all destinations of a sender.
class Outgoing_sessions {
 public:
  Session next_multicast() noexcept { return multicast_.next(); }
  Session next_unicast(const Endpoint& peer);

 private:
  struct Peer {
    Endpoint endpoint;
    Session_counter counter;
  };

  Session_counter multicast_;
  std::list<Peer> peers_;  // the last used one first
};

/// Sees from session ids and reboot flags that a peer has started anew.
class Reboot_detection {
 public:
  /// Takes one received message; true if the peer has rebooted since its last one. A reboot is told once: both directions start anew.
  bool received(const Endpoint& peer, Direction direction, Session session);

  /// Whether the peer was heard before, but never in this direction: the ids of its next message tell nothing.
  bool is_first(const Endpoint& peer, Direction direction) const;

  /// Takes it from elsewhere that this message, just received, is of a new life: the ids of the other direction start anew.
  void restarted(const Endpoint& peer, Direction direction, Session session);

 private:
  struct Peer {
    Endpoint endpoint;
    Session multicast{0, false};  // the last one received; id 0: none yet
    Session unicast{0, false};
  };

  static Session& last(Peer& peer, Direction direction) { return direction == Direction::multicast ? peer.multicast : peer.unicast; }

  std::list<Peer> peers_;  // the last heard of first
};

}  // namespace xr::com::wire
