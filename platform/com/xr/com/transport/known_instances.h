#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <vector>

#include "xr/com/transport/instance_key.h"
#include "xr/com/wire/sd_message.h"

namespace xr::com::transport {

/// Where an instance is, as its last offer says.
struct Offer {
  wire::Endpoint peer;  ///< who sent the offer; subscriptions go there
  std::optional<wire::Endpoint> udp;
  std::optional<wire::Endpoint> tcp;

  bool same_endpoints(const Offer& other) const { return udp == other.udp && tcp == other.tcp; }
};

/// The instances that are offered now. Time is given by the caller; nothing here knows sockets or threads.
class Known_instances {
 public:
  using Time = std::chrono::steady_clock::time_point;

  static constexpr std::size_t kMaximum = 64;

  enum class Change : std::uint8_t {
    appeared,
    repeated,
    moved,         ///< the same host offers it at other endpoints
    foreign_host,  ///< ignored: another host's offer still stands
    full           ///< ignored: `kMaximum` instances are known
  };

  /// Takes an offer that holds for `ttl` seconds.
  Change offer(Instance_key key, const Offer& offer, std::uint32_t ttl, Time now);

  /// Takes a withdrawal; false if it is not the host's whose offer stands.
  bool withdraw(Instance_key key, const wire::Endpoint& peer);

  /// Removes one instance whose time has run out, the first to appear first; nothing if there is none.
  std::optional<Instance_key> expire(Time now);

  /// When the next time runs out; nothing if all offers hold for ever.
  std::optional<Time> next_expiry() const;

  /// Removes one instance that `peer` offers; nothing if there is none.
  std::optional<Instance_key> remove_of(const wire::Endpoint& peer);

  const Offer* find(Instance_key key) const;

  struct Entry {
    Instance_key key;
    Offer offer;
    Time expiry;
  };

  /// In the order of appearance.
  const std::vector<Entry>& entries() const { return entries_; }

 private:
  std::vector<Entry>::iterator position(Instance_key key);
  template <class Predicate>
  std::optional<Instance_key> remove_first(Predicate predicate);

  std::vector<Entry> entries_;
};

}  // namespace xr::com::transport
