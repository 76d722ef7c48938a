#include "fuzz/client_side.h"

#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

#include "fuzz/fail.h"

namespace fuzz {
namespace {

namespace wire = xr::com::wire;

wire::Deployment OwnDeployment() {
  ara::log::InitLogging("FUZZ", "fuzzing", ara::log::LogLevel::kOff, ara::log::LogMode::kConsole, "");
  constexpr int kFirstPort = 20000;
  constexpr int kPorts = 10000;
  auto deployment = wire::default_deployment();
  deployment.discovery.port = static_cast<std::uint16_t>(kFirstPort + getpid() % kPorts);  // apart from what else runs here
  for (auto& service : deployment.services) {
    for (auto& field : service.fields) field.reliable = false;
  }
  return deployment;
}

/// Read once: a target has this side made anew for each input.
const wire::Deployment& TheDeployment() {
  static const auto deployment = OwnDeployment();
  return deployment;
}

}  // namespace

ClientSide::ClientSide() : deployment{TheDeployment()}, buffer(wire::kMaximumMessage), channel{io, deployment, buffer, warnings} {}

VehicleSocket::VehicleSocket()
    : socket_{wire::open_message_socket(boost::asio::ip::address_v4::loopback()).value()}, place_{wire::local_endpoint(socket_).value()} {}

void VehicleSocket::Send(const wire::Endpoint& to, wire::Bytes datagram) {
  wire::send_datagram(socket_.get(), to, datagram);
}

std::vector<unsigned char> VehicleSocket::Receive(wire::Endpoint& from) {
  std::vector<unsigned char> datagram(wire::kMaximumMessage);
  sockaddr_in address{};
  socklen_t size = sizeof address;
  const auto received =
      recvfrom(socket_.get(), datagram.data(), datagram.size(), MSG_DONTWAIT, reinterpret_cast<sockaddr*>(&address), &size);
  if (received < 0) return {};
  from = {boost::asio::ip::address_v4{ntohl(address.sin_addr.s_addr)}, ntohs(address.sin_port), wire::Protocol::udp};
  datagram.resize(static_cast<std::size_t>(received));
  return datagram;
}

void Sink::event_updated(std::uint32_t, const std::vector<unsigned char>& payload) {
  volatile unsigned char seen = 0;
  for (const auto byte : payload) seen = byte;
  static_cast<void>(seen);
}

}  // namespace fuzz
