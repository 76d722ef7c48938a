#include "tests/unit/vehicle/peer.h"

#include "xr/com/wire/sockets.h"

#include <boost/asio/write.hpp>

#include <stdexcept>

namespace vehicle {

namespace net = boost::asio;
namespace wire = xr::com::wire;

Peer::Peer(net::io_context& context, const wire::Deployment& deployment)
    : deployment_{deployment},
      discovery_{context, deployment.discovery, deployment.unicast,
                 [this](const Endpoint& sender, const wire::Sd_message& message, bool) { OnDiscovery(sender, message); }},
      udp_{context},
      tcp_{context} {
  udp_.assign(net::ip::udp::v4(), wire::open_message_socket(deployment.unicast).value().release());
  ReceiveDatagrams();
}

const wire::Sd_entry* Peer::Offer(const std::string& shortName) const {
  const auto found = offers_.find(Service(shortName).service_id);
  return found == offers_.end() ? nullptr : &found->second;
}

void Peer::Find(const std::string& shortName) {
  wire::Sd_entry find;
  find.service = Service(shortName).service_id;
  find.instance = wire::kAnyInstance;
  find.major = 0xFF;
  find.minor = wire::kAnyMinor;
  find.ttl = 3;
  discovery_.SendToGroup({find});
}

void Peer::Connect(const std::string& shortName) {
  const auto to = Offered(shortName, wire::Protocol::tcp);
  tcp_.connect({to.address, to.port});
  tcp_.set_option(net::ip::tcp::no_delay{true});
  ReadStream();
}

void Peer::Subscribe(const std::string& name, std::uint32_t ttl) {
  const auto [service, field] = Field(name);
  wire::Sd_entry entry;
  entry.type = wire::Entry_type::subscribe;
  entry.service = service->service_id;
  entry.instance = service->instance_id;
  entry.major = service->major_version;
  entry.ttl = ttl;
  entry.eventgroup = field->eventgroup;
  Endpoint own{deployment_.unicast, udp_.local_endpoint().port(), wire::Protocol::udp};
  if (field->reliable) own = {deployment_.unicast, tcp_.is_open() ? tcp_.local_endpoint().port() : std::uint16_t{1}, wire::Protocol::tcp};
  entry.options = {{wire::Option_kind::endpoint, own}};
  discovery_.SendTo(server_.value(), {entry});
}

void Peer::Request(const std::string& name, const std::vector<unsigned char>* payload) {
  const auto [service, field] = Field(name);
  wire::Header header;
  header.service = service->service_id;
  header.method = payload ? field->set.value_or(0x7FFF) : field->get;
  header.session = ++session_;
  header.interface_version = service->major_version;
  const auto message = wire::encode_message(header, payload ? *payload : std::vector<unsigned char>{});
  if (!field->reliable) {
    wire::send_datagram(udp_.native_handle(), Offered(service->name.substr(service->name.rfind(':') + 1), wire::Protocol::udp), message);
    return;
  }
  for (const unsigned char byte : message) net::write(tcp_, net::buffer(&byte, 1));
}

const wire::Service_deployment& Peer::Service(const std::string& shortName) const {
  for (const auto& service : deployment_.services)
    if (service.name.ends_with("::" + shortName)) return service;
  throw std::invalid_argument(shortName);
}

std::pair<const wire::Service_deployment*, const wire::Field_deployment*> Peer::Field(const std::string& name) const {
  for (const auto& service : deployment_.services)
    if (const auto* field = service.find_field(name)) return {&service, field};
  throw std::invalid_argument(name);
}

void Peer::OnDiscovery(const Endpoint& sender, const wire::Sd_message& message) {
  server_ = sender;
  discovery.push_back(message);
  for (const auto& entry : message.entries) {
    if (entry.type == wire::Entry_type::subscribe_ack) acks[entry.eventgroup] = entry.ttl != 0;
    if (entry.type != wire::Entry_type::offer) continue;
    if (entry.ttl == 0)
      offers_.erase(entry.service);
    else
      offers_[entry.service] = entry;
  }
}

Endpoint Peer::Offered(const std::string& service, wire::Protocol protocol) const {
  for (const auto& option : Offer(service)->options)
    if (option.endpoint.protocol == protocol) return option.endpoint;
  throw std::runtime_error("no endpoint of that protocol in the offer");
}

void Peer::ReceiveDatagrams() {
  udp_.async_receive(net::buffer(datagram_), [this](auto error, std::size_t size) {
    if (error) return;
    wire::Bytes rest{datagram_.data(), size};
    while (!rest.empty())
      if (const auto message = wire::take_message(rest))
        received.push_back({message->header, {message->payload.begin(), message->payload.end()}});
    ReceiveDatagrams();
  });
}

void Peer::ReadStream() {
  const auto space = stream_.space();
  tcp_.async_read_some(net::buffer(space.data(), space.size()), [this](auto error, std::size_t size) {
    if (error) {
      tcp_.close();
      return;
    }
    stream_.filled(size);
    while (const auto message = stream_.next()) received.push_back({message->header, {message->payload.begin(), message->payload.end()}});
    ReadStream();
  });
}

}  // namespace vehicle
