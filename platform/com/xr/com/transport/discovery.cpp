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
    : deployment_{deployment}, channel_{channel}, find_thread_{find_thread}, observer_{observer}, warnings_{warnings}, expiry_{io, [this] {
                                                                                                                                 expired();
                                                                                                                               }} {
  for (const auto& service : deployment.services) {
    searches_.emplace(std::piecewise_construct, std::forward_as_tuple(service.service_id),
                      std::forward_as_tuple(io, deployment.discovery, [this, &service] { ask(service); }));
  }
  channel_.set_handlers({.rebooted = [this](const wire::Endpoint& peer) { rebooted(peer); },
                         .entry = [this](const wire::Sd_entry& entry, const wire::Endpoint& peer) { received(entry, peer); },
                         .moves = [this](const auto& entries, const wire::Endpoint& peer) { return moves(entries, peer); }});
}

void Discovery::start() {
  channel_.start();
  watch_expiry();
  settle();
}

void Discovery::stop() {
  expiry_.cancel();
  for (auto& [service, search] : searches_) search.stop();
  channel_.stop();
}

void Discovery::add_find(const std::weak_ptr<Find>& weak) {
  const auto find = weak.lock();
  if (!find) return;
  const bool found = is_found(*find);
  finds_.push_back({weak, found});
  if (!found) searches_.at(find->service_id()).stop();  // to begin anew
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
  note_change(key, change == Known_instances::Change::appeared);
  watch_expiry();
  observer_.instance_offered(key, offer);
  if (change == Known_instances::Change::appeared) {
    cpp_binding::logger().LogInfo() << service.name << ' ' << instance_text(entry.instance) << " is offered by " << to_text(peer);
    if (!is_sought(entry.service)) searches_.at(entry.service).stop();
  }
  settle();
}

void Discovery::withdrawn(const wire::Sd_entry& entry, const wire::Endpoint& peer) {
  const Instance_key key{entry.service, entry.instance};
  if (!known_.withdraw(key, peer)) return;
  lost(key, "withdrawn");
  observer_.instances_lost();
  settle();
}

void Discovery::rebooted(const wire::Endpoint& peer) {
  bool any = false;
  for (; const auto key = known_.remove_of(peer); any = true) lost(*key, "its host has rebooted");
  if (!any) return;
  observer_.instances_lost();
  settle();
}

bool Discovery::moves(const std::vector<wire::Sd_entry>& entries, const wire::Endpoint& peer) const {
  return std::any_of(entries.begin(), entries.end(), [&](const wire::Sd_entry& entry) {
    const auto* known = known_.find({entry.service, entry.instance});
    return entry.type == wire::Entry_type::offer && entry.ttl != 0 && known && known->peer == peer &&
           !known->same_endpoints(offer_of(entry, peer));
  });
}

void Discovery::expired() {
  while (const auto key = known_.expire(Alarm::Clock::now())) lost(*key, "its time has run out");
  watch_expiry();
  observer_.instances_lost();
  settle();
}

void Discovery::watch_expiry() {
  if (const auto next = known_.next_expiry()) {
    expiry_.set(*next);
  } else {
    expiry_.cancel();
  }
}

/// What follows from a loss and cannot fail; `settle` does the rest.
void Discovery::lost(Instance_key key, std::string_view reason) {
  note_change(key, true);
  searches_.at(key.service).stop();  // to begin anew, if it is sought
  const auto& service = *deployment_.find_service(key.service);
  cpp_binding::logger().LogInfo() << service.name << ' ' << instance_text(key.instance) << " is lost: " << reason;
}

/// Notes which finds must be told of this instance: all that want it if the list has `changed`, else those that could not take their last
/// one. It cannot fail, so that nothing is forgotten if telling them does.
void Discovery::note_change(Instance_key key, bool changed) {
  for (auto& [weak, stale] : finds_) {
    const auto find = weak.lock();
    if (!find || !find->wants(key.service, key.instance)) continue;
    const bool failed = find->take_failed();
    stale = stale || changed || failed;
  }
}

/// Tells the finds what is noted, and looks for what is sought. Repeating it is harmless.
void Discovery::settle() {
  std::erase_if(finds_, [](const Wanted& wanted) { return wanted.find.expired(); });
  for (auto& [weak, stale] : finds_) {
    if (!stale) continue;
    if (const auto find = weak.lock()) tell(find);
    stale = false;
  }
  for (auto& [service, search] : searches_) {
    if (!search.is_running() && is_sought(service)) search.start();
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
  return std::any_of(finds_.begin(), finds_.end(), [&](const Wanted& wanted) {
    const auto find = wanted.find.lock();
    return find && find->service_id() == service && !is_found(*find);
  });
}

bool Discovery::is_found(const Find& find) const {
  return std::any_of(known_.entries().begin(), known_.entries().end(),
                     [&](const auto& entry) { return find.wants(entry.key.service, entry.key.instance); });
}

}  // namespace xr::com::transport
