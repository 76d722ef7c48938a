#include "xr/com/transport/discovery.h"

#include <algorithm>
#include <optional>
#include <tuple>
#include <utility>

namespace xr::com::transport {
namespace {

/// The first endpoint of a protocol to which messages can be sent.
std::optional<wire::Endpoint> endpoint_of(const wire::Sd_entry& entry, wire::Protocol protocol) {
  const auto found = std::find_if(entry.options.begin(), entry.options.end(), [&](const wire::Option& option) {
    const auto& [address, port, kind] = option.endpoint;
    return option.kind == wire::Option_kind::endpoint && kind == protocol && port != 0 && !address.is_unspecified() &&
           !address.is_multicast();
  });
  return found == entry.options.end() ? std::nullopt : std::optional{found->endpoint};
}

Offer offer_of(const wire::Sd_entry& entry, const wire::Endpoint& peer) {
  return {peer, endpoint_of(entry, wire::Protocol::udp), endpoint_of(entry, wire::Protocol::tcp)};
}

}  // namespace

Discovery::Discovery(boost::asio::io_context& io, const wire::Deployment& deployment, Sd_channel& channel, Find_thread& find_thread,
                     Instance_observer& observer, Counted_warnings& warnings)
    : deployment_{deployment}, channel_{channel}, find_thread_{find_thread}, observer_{observer}, warnings_{warnings}, expiry_{io} {
  for (const auto& service : deployment.services) {
    searches_.emplace(std::piecewise_construct, std::forward_as_tuple(service.service_id),
                      std::forward_as_tuple(io, deployment.discovery, [this, &service] { ask(service); }));
  }
}

void Discovery::start() {
  channel_.start({.rebooted = [this](const wire::Endpoint& peer) { rebooted(peer); },
                  .entry = [this](const wire::Sd_entry& entry, const wire::Endpoint& peer) { received(entry, peer); },
                  .moves = [this](const auto& entries, const wire::Endpoint& peer) { return moves(entries, peer); }});
}

void Discovery::stop() {
  stopped_ = true;
  channel_.stop();
  expiry_.cancel();
  for (auto& [service, search] : searches_) search.stop();
}

void Discovery::add_find(const std::weak_ptr<Find>& weak) {
  const auto find = weak.lock();
  if (!find) return;
  finds_.push_back(weak);
  if (is_found(*find)) {
    tell(find);
  } else {
    searches_.at(find->service_id()).start();
  }
}

void Discovery::received(const wire::Sd_entry& entry, const wire::Endpoint& peer) {
  if (!deployment_.find_service(entry.service)) return;  // of others
  if (entry.type == wire::Entry_type::subscribe_ack) {
    observer_.subscription_answered(entry, peer);
  } else if (entry.type == wire::Entry_type::offer && entry.ttl == 0) {
    withdrawn(entry, peer);
  } else if (entry.type == wire::Entry_type::offer) {
    offered(entry, peer);
  }
}

void Discovery::offered(const wire::Sd_entry& entry, const wire::Endpoint& peer) {
  const auto& service = *deployment_.find_service(entry.service);
  const Instance_key key{entry.service, entry.instance};
  const auto offer = offer_of(entry, peer);
  const auto refuse = [&](Fault fault, std::string_view reason) {
    warnings_.warn(fault, [&](auto& line) {
      line << "Ignored the offer of " << service.name << ' ' << instance_text(entry.instance) << " from " << to_text(peer) << ": "
           << reason;
    });
  };
  if (entry.instance == 0 || entry.instance == wire::kAnyInstance) return refuse(Fault::bad_entry, "no instance has this id");
  if (entry.major != service.major_version) return refuse(Fault::bad_entry, "it is of another major version");
  if (!offer.udp && !offer.tcp) return refuse(Fault::bad_entry, "it has no usable endpoint");

  const auto change = known_.offer(key, offer, entry.ttl, Known_instances::Time::clock::now());
  if (change == Known_instances::Change::full) return refuse(Fault::too_many_instances, "too many instances are known");
  if (change == Known_instances::Change::foreign_host) return refuse(Fault::foreign_offer, "another host offers this instance");
  watch_expiry();
  observer_.instance_offered(key, offer, change);
  if (change == Known_instances::Change::appeared) {
    cpp_binding::logger().LogInfo() << service.name << ' ' << instance_text(entry.instance) << " is offered by " << to_text(peer);
    if (!is_sought(entry.service)) searches_.at(entry.service).stop();
    tell_finds(key);
  }
}

void Discovery::withdrawn(const wire::Sd_entry& entry, const wire::Endpoint& peer) {
  const Instance_key key{entry.service, entry.instance};
  if (known_.withdraw(key, peer)) lost(key, "withdrawn");
}

void Discovery::rebooted(const wire::Endpoint& peer) {
  while (const auto key = known_.remove_of(peer)) lost(*key, "its host has rebooted");
}

bool Discovery::moves(const std::vector<wire::Sd_entry>& entries, const wire::Endpoint& peer) const {
  return std::any_of(entries.begin(), entries.end(), [&](const wire::Sd_entry& entry) {
    const auto* known = known_.find({entry.service, entry.instance});
    return entry.type == wire::Entry_type::offer && entry.ttl != 0 && known && known->peer == peer &&
           !known->same_endpoints(offer_of(entry, peer));
  });
}

void Discovery::expired() {
  while (const auto key = known_.expire(Known_instances::Time::clock::now())) lost(*key, "its time has run out");
  watch_expiry();
}

void Discovery::watch_expiry() {
  const auto next = known_.next_expiry();
  if (!next) {
    expiry_.cancel();
    return;
  }
  expiry_.expires_at(*next);
  expiry_.async_wait([this](boost::system::error_code error) {
    if (!error && !stopped_) expired();
  });
}

void Discovery::lost(Instance_key key, std::string_view reason) {
  const auto& service = *deployment_.find_service(key.service);
  cpp_binding::logger().LogInfo() << service.name << ' ' << instance_text(key.instance) << " is lost: " << reason;
  observer_.instance_lost(key);
  tell_finds(key);
  if (is_sought(key.service)) searches_.at(key.service).start();
}

/// Tells the finds whose list a change of this instance has changed.
void Discovery::tell_finds(Instance_key key) {
  finds_.erase(std::remove_if(finds_.begin(), finds_.end(), [](const auto& find) { return find.expired(); }), finds_.end());
  for (const auto& weak : finds_) {
    const auto find = weak.lock();
    if (find && find->wants(key.service, key.instance)) tell(find);
  }
}

void Discovery::tell(const std::shared_ptr<Find>& find) {
  Instance_list list;
  for (const auto& [key, offer, expiry] : known_.entries()) {
    if (!find->wants(key.service, key.instance)) continue;
    list.push_back({find->service(), qe::com::runtime::Instance_id{instance_text(key.instance)}, observer_.port_source(key, offer)});
  }
  find_thread_.post(find, std::move(list));
}

void Discovery::ask(const wire::Service_deployment& service) {
  if (!is_sought(service.service_id)) return;
  channel_.send_to_group({{.type = wire::Entry_type::find,
                           .service = service.service_id,
                           .instance = wire::kAnyInstance,
                           .major = service.major_version,
                           .ttl = deployment_.discovery.subscribe_ttl,
                           .minor = wire::kAnyMinor,
                           .options = {}}});
}

/// Whether a find of the service has nothing yet.
bool Discovery::is_sought(std::uint16_t service) const {
  return std::any_of(finds_.begin(), finds_.end(), [&](const auto& weak) {
    const auto find = weak.lock();
    return find && find->service_id() == service && !is_found(*find);
  });
}

bool Discovery::is_found(const Find& find) const {
  return std::any_of(known_.entries().begin(), known_.entries().end(),
                     [&](const auto& entry) { return find.wants(entry.key.service, entry.key.instance); });
}

}  // namespace xr::com::transport
