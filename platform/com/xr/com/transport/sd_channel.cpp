#include "xr/com/transport/sd_channel.h"

#include <algorithm>
#include <chrono>
#include <stdexcept>
#include <string>
#include <utility>

#include "xr/com/transport/instance_key.h"
#include "xr/com/wire/sockets.h"

namespace xr::com::transport {
namespace {

using namespace std::chrono_literals;

constexpr auto kGathering = 10ms;
constexpr auto kRetryDelay = 100ms;
constexpr unsigned kRetries = 10;

wire::Socket_handle opened(wire::Result<wire::Socket_handle> socket, const wire::Endpoint& endpoint, const wire::Deployment& deployment) {
  if (socket) return std::move(*socket);
  throw std::runtime_error{"Cannot open the discovery socket " + to_text(endpoint) + " of " + deployment.unicast.to_string() + ": " +
                           socket.error().message()};
}

}  // namespace

Sd_channel::Sd_channel(boost::asio::io_context& io, const wire::Deployment& deployment, Receive_buffer& buffer, Counted_warnings& warnings)
    : group_{deployment.discovery.multicast, deployment.discovery.port, wire::Protocol::udp},
      own_{deployment.unicast, deployment.discovery.port, wire::Protocol::udp},
      warnings_{warnings},
      flush_{io, [this] { flush(); }} {
  const auto reader = [&](wire::Socket_handle socket, wire::Direction direction) {
    return std::make_shared<Datagram_reader>(
        io, std::move(socket), buffer,
        [this, direction](wire::Bytes datagram, const wire::Endpoint& sender) { received(direction, datagram, sender); });
  };
  group_reader_ =
      reader(opened(wire::open_group_socket(group_.address, group_.port, own_.address), group_, deployment), wire::Direction::multicast);
  unicast_reader_ = reader(opened(wire::open_discovery_socket(own_.address, own_.port), own_, deployment), wire::Direction::unicast);
}

void Sd_channel::start() {
  group_reader_->start();
  unicast_reader_->start();
  if (!waiting_.empty() && !flush_.is_set()) flush_.set_after(kGathering);
}

void Sd_channel::stop() {
  group_reader_->stop();
  unicast_reader_->stop();
  flush();
  flush_.cancel();
}

void Sd_channel::send_to_group(std::vector<wire::Sd_entry> entries) {
  send(group_, sessions_.next_multicast(), std::move(entries));
}

void Sd_channel::send_to(const wire::Endpoint& peer, const std::vector<wire::Sd_entry>& entries) {
  if (!flush_.is_set()) flush_.set_after(kGathering);  // first: nothing may wait without it
  auto found = std::find_if(waiting_.begin(), waiting_.end(), [&](const Waiting& waiting) { return waiting.peer == peer; });
  if (found == waiting_.end()) found = waiting_.insert(waiting_.end(), Waiting{peer});
  found->entries.insert(found->entries.end(), entries.begin(), entries.end());
}

void Sd_channel::flush() {
  for (auto& waiting : waiting_) flush(waiting);
  std::erase_if(waiting_, [](const Waiting& waiting) { return waiting.entries.empty(); });
  if (!waiting_.empty()) flush_.set_after(kRetryDelay);
}

/// Leaves what must be tried again.
void Sd_channel::flush(Waiting& waiting) {
  auto& entries = waiting.entries;
  while (!entries.empty()) {
    const auto end = entries.begin() + static_cast<std::ptrdiff_t>(wire::fitting_entries(entries));
    if (send(waiting.peer, sessions_.next_unicast(waiting.peer), {entries.begin(), end})) {
      entries.erase(entries.begin(), end);
    } else {
      if (++waiting.failures > kRetries) entries.clear();
      return;
    }
  }
}

bool Sd_channel::send(const wire::Endpoint& destination, wire::Session session, std::vector<wire::Sd_entry> entries) {
  const auto datagram = wire::encode_sd({.session = session.id, .reboot = session.reboot, .unicast = true, .entries = std::move(entries)});
  const auto error = wire::send_datagram(unicast_reader_->descriptor(), destination, datagram);
  if (error) {
    warnings_.warn(Fault::send_failed,
                   [&](auto& line) { line << "Cannot send a discovery message to " << to_text(destination) << ": " << error.message(); });
  }
  return !error;
}

void Sd_channel::received(wire::Direction direction, wire::Bytes datagram, const wire::Endpoint& sender) {
  if (sender == own_) return;
  const auto message = wire::decode_sd(datagram);
  if (!message) {
    warnings_.warn(Fault::malformed_discovery, [&](auto& line) {
      line << "Dropped a discovery message from " << to_text(sender) << ": " << message.error().message();
    });
    return;
  }
  if (message->dropped_entries > 0) {
    warnings_.warn(Fault::bad_entry, [&](auto& line) {
      line << "Dropped " << message->dropped_entries << " discovery entries from " << to_text(sender)
           << ": they refer to options that are not there";
    });
  }
  if (has_rebooted(direction, *message, sender)) handlers_.rebooted(sender);
  for (const auto& entry : message->entries) handlers_.entry(entry, sender);
}

/// A peer whose first message in this direction carries the reboot flag and moves what it offered before has rebooted, though no id tells
/// it yet: waiting for one would take the answers to the new subscriptions for the reboot and lose them again.
bool Sd_channel::has_rebooted(wire::Direction direction, const wire::Sd_message& message, const wire::Endpoint& sender) {
  const wire::Session session{message.session, message.reboot};
  const bool first = reboots_.is_first(sender, direction);
  if (reboots_.received(sender, direction, session)) return true;
  if (!first || !message.reboot || !handlers_.moves(message.entries, sender)) return false;
  reboots_.restarted(sender, direction, session);
  return true;
}

}  // namespace xr::com::transport
