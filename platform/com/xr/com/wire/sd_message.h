#pragma once

#include <boost/asio/ip/address_v4.hpp>
#include <cstddef>
#include <cstdint>
#include <vector>

#include "xr/com/wire/bytes.h"
#include "xr/com/wire/error.h"
#include "xr/com/wire/header.h"

/// Service discovery messages (AUTOSAR PRS_SOMEIPServiceDiscovery), IPv4 only.
namespace xr::com::wire {

inline constexpr std::uint16_t kSdService = 0xFFFF;
inline constexpr std::uint16_t kSdMethod = 0x8100;
inline constexpr std::uint16_t kAnyInstance = 0xFFFF;
inline constexpr std::uint32_t kAnyMinor = 0xFFFFFFFF;
/// An entry with this TTL, in seconds, holds until it is withdrawn.
inline constexpr std::uint32_t kTtlForever = 0xFFFFFF;

enum class Protocol : std::uint8_t { tcp = 0x06, udp = 0x11 };

/// Where messages of one protocol are taken.
struct Endpoint {
  boost::asio::ip::address_v4 address;
  std::uint16_t port = 0;
  Protocol protocol = Protocol::udp;

  friend bool operator==(const Endpoint&, const Endpoint&) = default;
};

enum class Option_kind : std::uint8_t { endpoint = 0x04, multicast = 0x14 };

struct Option {
  Option_kind kind = Option_kind::endpoint;
  Endpoint endpoint;

  friend bool operator==(const Option&, const Option&) = default;
};

enum class Entry_type : std::uint8_t { find = 0x00, offer = 0x01, subscribe = 0x06, subscribe_ack = 0x07 };

/// One entry with the options that it refers to. An offer with a TTL of 0 withdraws, a subscription with it ends, an ack with it refuses.
struct Sd_entry {
  Entry_type type = Entry_type::find;
  std::uint16_t service = 0;
  std::uint16_t instance = 0;
  std::uint8_t major = 0;
  std::uint32_t ttl = 0;          ///< seconds, 24 bits
  std::uint32_t minor = 0;        ///< of find and offer
  std::uint16_t eventgroup = 0;   ///< of subscribe and its ack
  std::uint8_t counter = 0;       ///< of subscribe and its ack, 4 bits
  std::vector<Option> options{};  ///< at most 15 when encoded

  friend bool operator==(const Sd_entry&, const Sd_entry&) = default;
};

struct Sd_message {
  std::uint16_t session = 0;
  bool reboot = false;
  bool unicast = true;
  std::vector<Sd_entry> entries{};
  std::size_t dropped_entries = 0;  ///< how many entries of a received message refer to options that it does not have
};

/// The biggest message that is sent, header included: one that no network has to cut.
inline constexpr std::size_t kMaximumSdMessage = 1400;

/// How many of the first entries travel in one message of at most `kMaximumSdMessage` bytes: at least one, if there is any. The end of a
/// subscription stays with the subscription that follows it, since the service takes both for one only in one message.
std::size_t fitting_entries(const std::vector<Sd_entry>& entries);

/// The whole message, SOME/IP header included. Entries that share their options refer to the same ones.
std::vector<unsigned char> encode_sd(const Sd_message& message);

/// Reads one whole datagram. Entries and options of unknown kinds, IPv6 among them, are skipped.
Result<Sd_message> decode_sd(Bytes datagram);

}  // namespace xr::com::wire
