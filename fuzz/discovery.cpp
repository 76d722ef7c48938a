#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <map>
#include <memory>

#include "fuzz/client_side.h"
#include "fuzz/fail.h"
#include "xr/com/transport/discovery.h"
#include "xr/com/wire/sd_message.h"

namespace {

namespace wire = xr::com::wire;
using namespace xr::com::transport;

/// What decodes must survive its own encoding, which holds fifteen options an entry and is made for few entries.
void CheckEncoding(wire::Bytes datagram) {
  constexpr std::size_t kOptions = 15;
  const auto message = wire::decode_sd(datagram);
  if (!message || message->entries.size() > kOptions) return;
  const auto fits = [](const wire::Sd_entry& entry) { return entry.options.size() <= kOptions; };
  if (!std::all_of(message->entries.begin(), message->entries.end(), fits)) return;
  const auto again = wire::decode_sd(wire::encode_sd(*message));
  if (!again || again->entries != message->entries || again->reboot != message->reboot || again->session != message->session) {
    fuzz::Fail("an encoding decodes to another message");
  }
}

/// The client role of discovery with a find and a port for each service, wired as the transport does it.
class Consumer final : public Instance_observer {
 public:
  explicit Consumer(Find_thread& finds) : discovery_{side_.io, side_.deployment, side_.channel, finds, *this, side_.warnings} {
    for (const auto& service : side_.deployment.services) {
      const Instance_key key{service.service_id, service.instance_id};
      const auto port = std::make_shared<Service_port>(nullptr, side_.Environment(), service, key, Offer{});
      ports_.emplace(key, port);
      port->resume(nullptr);
      port->subscribe(0, sink_);
      finds_.push_back(std::make_shared<Find>(service.name, service.service_id, std::nullopt, [](const Instance_list&) { return true; }));
      discovery_.add_find(finds_.back());
    }
    discovery_.start();
    side_.io.poll();
  }
  ~Consumer() override {
    for (const auto& [key, port] : ports_) port->stop();
    discovery_.stop();
    side_.io.poll();
  }
  Consumer(const Consumer&) = delete;
  Consumer& operator=(const Consumer&) = delete;

  void Receive(fuzz::VehicleSocket& from, wire::Bytes datagram) {
    from.Send({side_.deployment.unicast, side_.deployment.discovery.port, wire::Protocol::udp}, datagram);
    side_.io.poll();
  }

  void instance_offered(Instance_key key, const Offer& offer) override {
    if (const auto port = ports_.find(key); port != ports_.end()) port->second->offered(offer);
  }
  void instances_lost() override {
    for (const auto& [key, port] : ports_) {
      if (discovery_.find_offer(key) == nullptr) port->lost();
    }
  }
  void subscription_answered(const wire::Sd_entry& ack, const wire::Endpoint& peer) override {
    const auto port = ports_.find({ack.service, ack.instance});
    if (port != ports_.end()) port->second->subscription_answered(ack, peer);
  }
  std::shared_ptr<xr::com::runtime::Port_source> port_source(Instance_key, const Offer&) override { return nullptr; }

 private:
  fuzz::ClientSide side_;
  std::shared_ptr<fuzz::Sink> sink_ = std::make_shared<fuzz::Sink>();
  std::map<Instance_key, std::shared_ptr<Service_port>> ports_;
  std::vector<std::shared_ptr<Find>> finds_;
  Discovery discovery_;
};

}  // namespace

// Datagrams of discovery, one after another, from two hosts. Two bytes stand before each: the host and the datagram's length.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static auto& finds = *new Find_thread;
  static auto& hosts = *new std::array<fuzz::VehicleSocket, 2>;
  Consumer consumer{finds};
  for (wire::Bytes rest{data, size}; rest.size() >= 2;) {
    const auto datagram = rest.subspan(2, std::min<std::size_t>(rest[1], rest.size() - 2));
    CheckEncoding(datagram);
    consumer.Receive(hosts[rest[0] % hosts.size()], datagram);
    rest = rest.subspan(2 + datagram.size());
  }
  return 0;
}
