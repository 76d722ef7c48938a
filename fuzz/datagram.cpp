#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <vector>

#include "fuzz/client_side.h"
#include "fuzz/fail.h"
#include "xr/com/shared_payload.h"

namespace {

namespace wire = xr::com::wire;
namespace proxy = xr::com::cpp_binding::proxy;
using Datagram = std::vector<unsigned char>;

constexpr std::uint16_t kCore = 0x6310;
constexpr std::uint16_t kInstance = 1;

/// The port of the first service as it is while the vehicle offers it, with every field subscribed and one get under way.
class Port {
 public:
  Port() {
    const Offer offer{vehicle_.Place(), vehicle_.Place(), {}};
    port_->resume(&offer);
    for (std::uint16_t field = 0; field < Fields(); ++field) port_->subscribe(field, sink_);
    side_.io.poll();
  }

  void Receive(std::uint16_t field, Datagram datagram) {
    const auto call = port_->call({static_cast<std::uint16_t>(field % Fields()), proxy::Method_kind::get},
                                  xr::com::cpp_binding::get_shared_payload(0), [](const proxy::Reply& reply) { Look(reply); });
    wire::Endpoint client;
    const auto request = Request(client);
    Answer(datagram, wire::decode_header(request)->header);
    vehicle_.Send(client, datagram);
    side_.io.poll();
  }

 private:
  std::uint16_t Fields() const { return static_cast<std::uint16_t>(service_.fields.size()); }

  /// The latest get; subscriptions and what is older go.
  Datagram Request(wire::Endpoint& client) {
    Datagram latest;
    for (;;) {
      wire::Endpoint from;
      auto datagram = vehicle_.Receive(from);
      if (datagram.empty()) break;
      const auto framed = wire::decode_header(datagram);
      if (!framed || framed->header.service != kCore) continue;
      latest = std::move(datagram);
      client = from;
    }
    if (latest.empty()) fuzz::Fail("no request is sent");
    return latest;
  }

  /// Makes the answers in the datagram those to this request: no input could know its number.
  static void Answer(Datagram& datagram, const wire::Header& request) {
    for (wire::Bytes rest{datagram}; !rest.empty();) {
      const auto front = rest;
      if (!wire::take_message(rest)) return;
      auto* const message = datagram.data() + (front.data() - datagram.data());
      if ((message[14] & 0x80U) == 0) continue;
      wire::write16({message, wire::kHeaderSize}, 10, request.session);
    }
  }

  static void Look(const proxy::Reply& reply) { fuzz::Sink{}.event_updated(reply.code, reply.payload); }

  fuzz::ClientSide side_;
  fuzz::VehicleSocket vehicle_;
  const wire::Service_deployment& service_ = *side_.deployment.find_service(kCore);
  std::shared_ptr<fuzz::Sink> sink_ = std::make_shared<fuzz::Sink>();
  std::shared_ptr<xr::com::transport::Service_port> port_ = std::make_shared<xr::com::transport::Service_port>(
      nullptr, side_.Environment(), service_, xr::com::transport::Instance_key{kCore, kInstance},
      xr::com::transport::Offer{vehicle_.Place(), vehicle_.Place(), {}});
};

}  // namespace

// A datagram of the vehicle to the port of a service. The first byte says which field is being asked for meanwhile.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static auto& port = *new Port;
  if (size > 0) port.Receive(data[0], {data + 1, data + size});
  return 0;
}
