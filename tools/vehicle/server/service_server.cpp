#include "tools/vehicle/server/service_server.h"

#include <boost/asio/io_context.hpp>

#include <algorithm>
#include <stdexcept>

namespace vehicle {

namespace wire = xr::com::wire;
using std::chrono::steady_clock;

namespace {

constexpr std::chrono::seconds kOfferPeriod{1};
constexpr std::uint32_t kOfferTtl = 3;  // seconds
constexpr std::uint8_t kAnyMajor = 0xFF;

wire::Sd_entry OfferEntry(const wire::Service_deployment& service, std::vector<wire::Option> options, std::uint32_t ttl) {
  wire::Sd_entry entry;
  entry.type = wire::Entry_type::offer;
  entry.service = service.service_id;
  entry.instance = service.instance_id;
  entry.major = service.major_version;
  entry.minor = service.minor_version;
  entry.ttl = ttl;
  entry.options = std::move(options);
  return entry;
}

wire::Sd_entry AckEntry(const wire::Sd_entry& subscribe, bool accepted) {
  auto entry = subscribe;
  entry.type = wire::Entry_type::subscribe_ack;
  if (!accepted) entry.ttl = 0;
  entry.options.clear();
  return entry;
}

const wire::Option* EndpointOf(const wire::Sd_entry& entry, bool reliable) {
  const auto protocol = reliable ? wire::Protocol::tcp : wire::Protocol::udp;
  const auto found = std::find_if(entry.options.begin(), entry.options.end(), [protocol](const wire::Option& option) {
    return option.kind == wire::Option_kind::endpoint && option.endpoint.protocol == protocol;
  });
  return found == entry.options.end() ? nullptr : &*found;
}

steady_clock::time_point EndOf(std::uint32_t ttl) {
  return ttl == wire::kTtlForever ? steady_clock::time_point::max() : steady_clock::now() + std::chrono::seconds{ttl};
}

}  // namespace

ServiceServer::ServiceServer(boost::asio::io_context& context, const wire::Deployment& deployment,
                             const boost::asio::ip::address_v4& address, FieldHost& host)
    : host_{host},
      discovery_{
          context, deployment.discovery, address,
          [this](const Endpoint& sender, const wire::Sd_message& message, bool rebooted) { OnDiscovery(sender, message, rebooted); }},
      offerTimer_{context} {
  for (const auto& entry : deployment.services) {
    auto service = std::make_unique<Service>();
    service->deployment = entry;
    service->shortName = entry.name.substr(entry.name.rfind(':') + 1);
    service->port = std::make_unique<ServicePort>(
        context, address,
        ServicePort::Callbacks{[this, &of = *service](const Endpoint& peer, const wire::Message& message) { OnRequest(of, peer, message); },
                               [this](const Endpoint& peer, bool open) { OnConnection(peer, open); }});
    services_.push_back(std::move(service));
  }
  OfferCyclically();
}

void ServiceServer::Offer(std::string_view name) {
  auto& service = ServiceNamed(name);
  if (std::exchange(service.offered, true)) return;
  discovery_.SendToGroup({OfferEntry(service.deployment, service.port->Options(), kOfferTtl)});
  host_.OnOffered(service.shortName, true);
}

void ServiceServer::StopOffer(std::string_view name) {
  auto& service = ServiceNamed(name);
  if (!std::exchange(service.offered, false)) return;
  discovery_.SendToGroup({OfferEntry(service.deployment, service.port->Options(), 0)});
  Forget(subscribers_.Remove([&](const Subscription& s) { return service.deployment.find_field(s.field) != nullptr; }), "withdrawn");
  host_.OnOffered(service.shortName, false);
}

void ServiceServer::Notify(const std::string& name) {
  const auto [service, field] = FieldNamed(name);
  if (field) SendValue(*service, *field, host_.PresentValue(name), subscribers_.Of(name, steady_clock::now()));
}

void ServiceServer::SendRaw(const std::string& name, const Bytes& bytes) {
  const auto [service, field] = FieldNamed(name);
  if (!field) return;
  for (const auto& subscriber : subscribers_.Of(name, steady_clock::now())) service->port->Send(subscriber, bytes);
}

void ServiceServer::BreakConnections() {
  for (const auto& service : services_) service->port->BreakConnections();
}

void ServiceServer::OfferCyclically() {
  offerTimer_.expires_after(kOfferPeriod);
  offerTimer_.async_wait([this](auto error) {
    if (error) return;
    std::vector<wire::Sd_entry> offers;
    for (const auto& service : services_)
      if (service->offered) offers.push_back(OfferEntry(service->deployment, service->port->Options(), kOfferTtl));
    if (!offers.empty()) discovery_.SendToGroup(std::move(offers));
    Forget(subscribers_.Remove([now = steady_clock::now()](const Subscription& s) { return s.until < now; }), "expired");
    OfferCyclically();
  });
}

void ServiceServer::OnDiscovery(const Endpoint& sender, const wire::Sd_message& message, bool rebooted) {
  if (rebooted) Forget(subscribers_.Remove([&](const Subscription& s) { return s.owner == sender; }), "rebooted");
  std::vector<wire::Sd_entry> answers;
  std::vector<Subscription> isNew;
  for (const auto& entry : message.entries) {
    if (entry.type == wire::Entry_type::subscribe) OnSubscribe(sender, entry, answers, isNew);
    for (const auto& service : services_)
      if (IsSought(*service, entry)) answers.push_back(OfferEntry(service->deployment, service->port->Options(), kOfferTtl));
  }
  if (!answers.empty()) discovery_.SendTo(sender, std::move(answers));
  // Behind the answer, so that a subscriber is told of its subscription before the first value comes.
  for (const auto& subscription : isNew) {
    const auto [service, field] = FieldNamed(subscription.field);
    SendValue(*service, *field, host_.PresentValue(subscription.field), {subscription.subscriber});
  }
}

bool ServiceServer::IsSought(const Service& service, const wire::Sd_entry& entry) const {
  const auto& own = service.deployment;
  return entry.type == wire::Entry_type::find && service.offered && entry.service == own.service_id &&
         (entry.instance == wire::kAnyInstance || entry.instance == own.instance_id) &&
         (entry.major == kAnyMajor || entry.major == own.major_version) &&
         (entry.minor == wire::kAnyMinor || entry.minor == own.minor_version);
}

void ServiceServer::OnSubscribe(const Endpoint& sender, const wire::Sd_entry& entry, std::vector<wire::Sd_entry>& answers,
                                std::vector<Subscription>& isNew) {
  const auto refuse = [&](const std::string& field, const char* reason) {
    if (entry.ttl != 0) answers.push_back(AckEntry(entry, false));
    host_.OnSubscriptionRefused(field, reason);
  };
  const auto service = std::find_if(services_.begin(), services_.end(), [&](const auto& s) {
    return s->offered && s->deployment.service_id == entry.service && s->deployment.instance_id == entry.instance &&
           s->deployment.major_version == entry.major;
  });
  if (service == services_.end()) return refuse("", "no such service is offered");
  const auto& fields = (*service)->deployment.fields;
  const auto field = std::find_if(fields.begin(), fields.end(), [&](const Field& f) { return f.eventgroup == entry.eventgroup; });
  if (field == fields.end()) return refuse("", "no such eventgroup");
  const auto* option = EndpointOf(entry, field->reliable);
  if (!option) return refuse(field->name, "no endpoint of the field's protocol");

  const Subscription subscription{field->name, option->endpoint, sender, EndOf(entry.ttl)};
  if (entry.ttl == 0) {
    const auto same = [&](const Subscription& s) { return s.field == subscription.field && s.subscriber == subscription.subscriber; };
    return Forget(subscribers_.Remove(same), "stopped");
  }
  if (field->reliable && !(*service)->port->IsConnected(option->endpoint)) return refuse(field->name, "not connected");
  if (!host_.AcceptsSubscription(field->name)) return refuse(field->name, "as told");
  answers.push_back(AckEntry(entry, true));
  const bool fresh = subscribers_.Accept(subscription, steady_clock::now());
  if (fresh) isNew.push_back(subscription);
  host_.OnSubscribed(subscription, fresh);
}

void ServiceServer::OnRequest(Service& service, const Endpoint& peer, const wire::Message& message) {
  if (message.header.type != wire::Message_type::request) return;
  const Reply reply = [&service, peer, header = message.header](const Answer& answer) {
    auto answered = header;
    answered.protocol_version = wire::kProtocolVersion;
    answered.type = answer.code == 0 ? wire::Message_type::response : wire::Message_type::error;
    answered.code = answer.code;
    service.port->Send(peer, wire::encode_message(answered, answer.payload));
  };
  const auto refuse = [&](ReturnCode code) { reply({static_cast<unsigned char>(code), {}}); };
  const auto& own = service.deployment;
  if (message.header.protocol_version != wire::kProtocolVersion) return refuse(ReturnCode::wrong_protocol_version);
  if (message.header.service != own.service_id) return refuse(ReturnCode::unknown_service);
  if (message.header.interface_version != own.major_version) return refuse(ReturnCode::wrong_interface_version);
  if (!service.offered) return refuse(ReturnCode::not_ready);
  for (const auto& field : own.fields) {
    if (field.get == message.header.method) return host_.OnGet(field.name, reply);
    if (field.set == message.header.method) return host_.OnSet(field.name, {message.payload.begin(), message.payload.end()}, reply);
  }
  refuse(ReturnCode::unknown_method);
}

void ServiceServer::OnConnection(const Endpoint& peer, bool open) {
  if (!open) Forget(subscribers_.Remove([&](const Subscription& s) { return s.subscriber == peer; }), "disconnected");
  host_.OnConnection(peer, open);
}

void ServiceServer::Forget(const std::vector<Subscription>& subscriptions, const char* reason) {
  for (const auto& subscription : subscriptions) host_.OnUnsubscribed(subscription, reason);
}

void ServiceServer::SendValue(Service& service, const Field& field, const Bytes& value, const std::vector<Endpoint>& to) {
  if (++service.nextNotification == 0) service.nextNotification = 1;
  wire::Header header;
  header.service = service.deployment.service_id;
  header.method = field.event;
  header.session = service.nextNotification;
  header.interface_version = service.deployment.major_version;
  header.type = wire::Message_type::notification;
  const auto message = wire::encode_message(header, value);
  for (const auto& subscriber : to) service.port->Send(subscriber, message);
}

ServiceServer::Service& ServiceServer::ServiceNamed(std::string_view shortName) {
  for (const auto& service : services_)
    if (service->shortName == shortName) return *service;
  throw std::invalid_argument("no service " + std::string{shortName} + " in the deployment");
}

std::pair<ServiceServer::Service*, const ServiceServer::Field*> ServiceServer::FieldNamed(std::string_view name) {
  for (const auto& service : services_)
    if (const auto* field = service->deployment.find_field(name)) return {service.get(), field};
  return {};
}

}  // namespace vehicle
