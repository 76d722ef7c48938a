#include <algorithm>
#include <boost/asio/post.hpp>
#include <chrono>
#include <exception>

#include "xr/com/transport/service_port.h"
#include "xr/com/wire/sockets.h"

namespace xr::com::transport {
namespace {

constexpr std::size_t kMaximumGroups = 8;
constexpr std::chrono::milliseconds kRetryTime{2000};

}  // namespace

void Service_port::subscribe(std::uint16_t field, std::weak_ptr<Event_sink> sink) {
  field_of(field);  // checks it
  sinks_.add(field, std::move(sink));
  boost::asio::post(environment_.io, [weak = weak_from_this(), field] {
    const auto self = weak.lock();
    if (!self || !self->sinks_.any(field)) return;
    self->subscriptions_.want(field);
    self->send_due();
  });
}

void Service_port::unsubscribe(std::uint16_t field, const Event_sink* sink) {
  field_of(field);
  sinks_.remove(field, sink);
  try {
    boost::asio::post(environment_.io, [weak = weak_from_this(), field] {
      const auto self = weak.lock();
      if (self && !self->sinks_.any(field)) self->end_subscription(field);
    });
  } catch (const std::exception& e) {  // the next renewal ends the subscription; a destructor calls this, which must not throw
    cpp_binding::logger().LogWarn() << "A subscription of " << service_.name << " ends later: " << e;
  }
}

void Service_port::end_subscription(std::uint16_t field) {
  if (subscriptions_.unwant(field) && can_subscribe(field)) environment_.discovery.send_to(offer_->peer, {subscribe_entry(field, 0)});
}

void Service_port::send_due() {
  if (!offer_) return;
  const auto due = subscriptions_.due([this](std::uint16_t field) { return can_subscribe(field); });
  if (due.empty()) return;
  std::vector<wire::Sd_entry> entries;
  for (const auto field : due) {
    // A service that was silent for a while but still holds the subscription would take a new one for its renewal, and not tell the value
    // that was missed. Over TCP the new connection makes it another subscription anyway.
    if (subscriptions_.is_left(field) && !service_.fields[field].reliable) entries.push_back(subscribe_entry(field, 0));
    entries.push_back(subscribe_entry(field, environment_.deployment.discovery.subscribe_ttl));
  }
  environment_.discovery.send_to(offer_->peer, entries);
  for (const auto field : due) subscriptions_.sent(field);
}

bool Service_port::can_subscribe(std::uint16_t field) const {
  if (!offer_) return false;
  return service_.fields[field].reliable ? tcp_local_.has_value() : offer_->udp.has_value();
}

wire::Sd_entry Service_port::subscribe_entry(std::uint16_t field, std::uint32_t ttl) const {
  const auto& deployed = service_.fields[field];
  return {.type = wire::Entry_type::subscribe,
          .service = key_.service,
          .instance = key_.instance,
          .major = service_.major_version,
          .ttl = ttl,
          .eventgroup = deployed.eventgroup,
          .options = {{wire::Option_kind::endpoint, deployed.reliable ? *tcp_local_ : udp_local_}}};
}

/// All subscriptions are renewed at half their time, as long as the instance is offered. Those that hold for ever are only asked for again
/// if they got no answer.
void Service_port::wait_renewal() {
  const auto ttl = environment_.deployment.discovery.subscribe_ttl;
  renewal_.set_after(ttl == wire::kTtlForever ? kRetryTime : std::chrono::milliseconds{500} * ttl);
}

void Service_port::renew() {
  wait_renewal();  // first: trouble with one renewal does not end them
  for (std::uint16_t field = 0; field < static_cast<std::uint16_t>(service_.fields.size()); ++field) {
    if (subscriptions_.is_wanted(field) && !sinks_.any(field)) end_subscription(field);  // its sink went without a word
  }
  if (environment_.deployment.discovery.subscribe_ttl == wire::kTtlForever) {
    subscriptions_.retry_unanswered();
  } else {
    subscriptions_.renew();
  }
  send_due();
}

void Service_port::subscription_answered(const wire::Sd_entry& ack, const wire::Endpoint& peer) {
  if (!offer_ || peer.address != offer_->peer.address) return;
  const auto found =
      std::find_if(service_.fields.begin(), service_.fields.end(), [&](const auto& field) { return field.eventgroup == ack.eventgroup; });
  if (found == service_.fields.end()) return;
  const auto field = static_cast<std::uint16_t>(found - service_.fields.begin());
  if (ack.ttl == 0) {
    environment_.warnings.warn(Fault::refused_subscription, [&](auto& line) {
      line << to_text(peer) << " refused the subscription of " << service_.name << ' ' << instance_.value() << ' ' << found->name;
    });
    subscriptions_.refused(field);
    return;
  }
  for (const auto& [kind, endpoint] : ack.options) {
    // Without the group its notifications would not arrive: then it is subscribed again with the next offer.
    if (kind == wire::Option_kind::multicast && endpoint.address.is_multicast() && !join_group(endpoint)) {
      return subscriptions_.refused(field);
    }
  }
  subscriptions_.acknowledged(field);
}

/// The service sends this field's notifications to a group. False if it cannot be joined now.
bool Service_port::join_group(const wire::Endpoint& group) {
  const bool joined = std::any_of(groups_.begin(), groups_.end(), [&](const auto& entry) { return entry.first == group; });
  if (joined || groups_.size() == kMaximumGroups) return true;
  auto socket = wire::open_group_socket(group.address, group.port, environment_.deployment.unicast);
  if (!socket) {
    environment_.warnings.warn(Fault::bad_entry, [&](auto& line) {
      line << "Cannot join the group " << to_text(group) << " of " << service_.name << ": " << socket.error().message();
    });
    return false;
  }
  const auto reader = std::make_shared<Datagram_reader>(
      environment_.io, std::move(*socket), environment_.buffer,
      [this](wire::Bytes datagram, const wire::Endpoint& sender) { datagram_received(datagram, sender); });
  groups_.emplace_back(group, reader);
  reader->start();
  return true;
}

}  // namespace xr::com::transport
