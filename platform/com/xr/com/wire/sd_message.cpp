#include "xr/com/wire/sd_message.h"

#include <algorithm>
#include <array>
#include <optional>
#include <utility>

namespace xr::com::wire {
namespace {

constexpr std::size_t kEntrySize = 16;
constexpr std::size_t kOptionFront = 3;   // length and type
constexpr std::uint16_t kIpv4Length = 9;  // of an IPv4 option, as its length field counts: from behind the type on
constexpr std::size_t kMaximumRun = 15;
constexpr unsigned char kRebootFlag = 0x80;
constexpr unsigned char kUnicastFlag = 0x40;

bool is_eventgroup(Entry_type type) {
  return type == Entry_type::subscribe || type == Entry_type::subscribe_ack;
}

// --- writing

void append_option(std::vector<unsigned char>& bytes, const Option& option) {
  append16(bytes, kIpv4Length);
  bytes.push_back(static_cast<unsigned char>(option.kind));
  bytes.push_back(0);
  const auto address = option.endpoint.address.to_bytes();
  bytes.insert(bytes.end(), address.begin(), address.end());
  bytes.push_back(0);
  bytes.push_back(static_cast<unsigned char>(option.endpoint.protocol));
  append16(bytes, option.endpoint.port);
}

/// The index of the first of `wanted` in `all`, after adding them behind the others unless they stand there in a row already.
std::size_t index_of(std::vector<Option>& all, const std::vector<Option>& wanted) {
  const auto found = std::search(all.begin(), all.end(), wanted.begin(), wanted.end());
  const auto index = static_cast<std::size_t>(found - all.begin());
  if (found == all.end()) all.insert(all.end(), wanted.begin(), wanted.end());
  return index;
}

/// Whether `end` ends the subscription that `entry` asks for anew.
bool is_renewed_by(const Sd_entry& end, const Sd_entry& entry) {
  return end.type == Entry_type::subscribe && end.ttl == 0 && entry.type == Entry_type::subscribe && entry.ttl != 0 &&
         end.service == entry.service && end.instance == entry.instance && end.eventgroup == entry.eventgroup;
}

void append_entry(std::vector<unsigned char>& bytes, const Sd_entry& entry, std::size_t firstOption) {
  const auto count = std::min(entry.options.size(), kMaximumRun);
  bytes.push_back(static_cast<unsigned char>(entry.type));
  bytes.push_back(static_cast<unsigned char>(count == 0 ? 0 : firstOption));
  bytes.push_back(0);
  bytes.push_back(static_cast<unsigned char>(count << 4));
  append16(bytes, entry.service);
  append16(bytes, entry.instance);
  append32(bytes, static_cast<std::uint32_t>(entry.major) << 24 | (entry.ttl & kTtlForever));
  if (is_eventgroup(entry.type)) {
    append16(bytes, entry.counter & 0xFU);
    append16(bytes, entry.eventgroup);
  } else {
    append32(bytes, entry.minor);
  }
}

// --- reading

/// The options of a message in their order; an empty place is one that is skipped.
using Options = std::vector<std::optional<Option>>;

std::optional<Option> read_ipv4(Option_kind kind, Bytes body) {
  const auto protocol = body[6];
  if (protocol != static_cast<unsigned char>(Protocol::udp) && protocol != static_cast<unsigned char>(Protocol::tcp)) return std::nullopt;
  const boost::asio::ip::address_v4 address{{body[1], body[2], body[3], body[4]}};
  return Option{kind, {address, read16(body, 7), static_cast<Protocol>(protocol)}};
}

Result<Options> read_options(Bytes bytes) {
  Options options;
  while (!bytes.empty()) {
    if (bytes.size() < kOptionFront) return Error::cut_off;
    const std::size_t length = read16(bytes, 0);
    const auto kind = static_cast<Option_kind>(bytes[2]);
    if (bytes.size() - kOptionFront < length) return Error::cut_off;
    if (kind == Option_kind::endpoint || kind == Option_kind::multicast) {
      if (length != kIpv4Length) return Error::broken_option;
      options.push_back(read_ipv4(kind, bytes.subspan(kOptionFront, length)));
    } else {
      options.emplace_back();
    }
    bytes = bytes.subspan(kOptionFront + length);
  }
  return options;
}

/// Adds one run of options to an entry; false if the message does not have them all.
bool add_run(Sd_entry& entry, const Options& options, std::size_t first, std::size_t count) {
  if (count == 0) return true;
  if (first + count > options.size()) return false;
  for (std::size_t i = first; i < first + count; ++i) {
    if (options[i]) entry.options.push_back(*options[i]);
  }
  return true;
}

bool is_known(unsigned char type) {
  constexpr std::array kKnown{Entry_type::find, Entry_type::offer, Entry_type::subscribe, Entry_type::subscribe_ack};
  return std::find(kKnown.begin(), kKnown.end(), static_cast<Entry_type>(type)) != kKnown.end();
}

Sd_entry read_entry(Bytes bytes) {
  Sd_entry entry;
  entry.type = static_cast<Entry_type>(bytes[0]);
  entry.service = read16(bytes, 4);
  entry.instance = read16(bytes, 6);
  entry.major = bytes[8];
  entry.ttl = read32(bytes, 8) & kTtlForever;
  if (is_eventgroup(entry.type)) {
    entry.counter = bytes[13] & 0xFU;
    entry.eventgroup = read16(bytes, 14);
  } else {
    entry.minor = read32(bytes, 12);
  }
  return entry;
}

void read_entries(Bytes bytes, const Options& options, Sd_message& message) {
  for (; !bytes.empty(); bytes = bytes.subspan(kEntrySize)) {
    if (!is_known(bytes[0])) continue;
    auto entry = read_entry(bytes);
    if (add_run(entry, options, bytes[1], bytes[3] >> 4) && add_run(entry, options, bytes[2], bytes[3] & 0xFU)) {
      message.entries.push_back(std::move(entry));
    } else {
      ++message.dropped_entries;
    }
  }
}

/// Takes a 32-bit length and as many bytes off the front.
Result<Bytes> take_array(Bytes& bytes) {
  if (bytes.size() < 4) return Error::cut_off;
  const std::size_t length = read32(bytes, 0);
  if (bytes.size() - 4 < length) return Error::cut_off;
  const auto array = bytes.subspan(4, length);
  bytes = bytes.subspan(4 + length);
  return array;
}

}  // namespace

std::size_t fitting_entries(const std::vector<Sd_entry>& entries) {
  constexpr std::size_t kFrame = kHeaderSize + 12;  // flags and the two lengths
  std::vector<Option> options;
  std::size_t count = 0;
  for (; count < entries.size(); ++count) {
    index_of(options, entries[count].options);
    if (kFrame + (count + 1) * kEntrySize + options.size() * (kOptionFront + kIpv4Length) > kMaximumSdMessage) break;
  }
  if (count > 1 && count < entries.size() && is_renewed_by(entries[count - 1], entries[count])) --count;
  return std::max<std::size_t>(count, entries.empty() ? 0 : 1);
}

std::vector<unsigned char> encode_sd(const Sd_message& message) {
  std::vector<unsigned char> entries;
  std::vector<Option> options;
  for (const auto& entry : message.entries) append_entry(entries, entry, index_of(options, entry.options));

  std::vector<unsigned char> payload{static_cast<unsigned char>((message.reboot ? kRebootFlag : 0) | (message.unicast ? kUnicastFlag : 0)),
                                     0, 0, 0};
  append32(payload, static_cast<std::uint32_t>(entries.size()));
  payload.insert(payload.end(), entries.begin(), entries.end());
  append32(payload, static_cast<std::uint32_t>(options.size() * (kOptionFront + kIpv4Length)));
  for (const auto& option : options) append_option(payload, option);

  const Header header{
      .service = kSdService, .method = kSdMethod, .session = message.session, .interface_version = 1, .type = Message_type::notification};
  return encode_message(header, payload);
}

Result<Sd_message> decode_sd(Bytes datagram) {
  const auto taken = take_message(datagram);
  if (!taken) return taken.error();
  const auto& header = taken->header;
  if (!datagram.empty()) return Error::wrong_length;
  if (header.protocol_version != kProtocolVersion || header.interface_version != 1) return Error::wrong_version;
  if (header.service != kSdService || header.method != kSdMethod || header.type != Message_type::notification) return Error::not_discovery;
  if (header.session == 0) return Error::wrong_session;

  auto bytes = taken->payload;
  if (bytes.size() < 4) return Error::cut_off;
  Sd_message message{
      .session = header.session, .reboot = (bytes[0] & kRebootFlag) != 0, .unicast = (bytes[0] & kUnicastFlag) != 0, .entries = {}};
  bytes = bytes.subspan(4);
  const auto entries = take_array(bytes);
  if (!entries) return entries.error();
  if (entries->size() % kEntrySize != 0) return Error::wrong_length;
  const auto raw = take_array(bytes);
  if (!raw) return raw.error();
  if (!bytes.empty()) return Error::wrong_length;
  const auto options = read_options(*raw);
  if (!options) return options.error();
  read_entries(*entries, *options, message);
  return message;
}

}  // namespace xr::com::wire
