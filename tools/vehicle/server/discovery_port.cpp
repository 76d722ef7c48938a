#include "tools/vehicle/server/discovery_port.h"

#include "xr/com/wire/sockets.h"

#include <boost/asio/buffer.hpp>
#include <boost/asio/io_context.hpp>

namespace vehicle {

namespace net = boost::asio;
namespace wire = xr::com::wire;
using net::ip::udp;

DiscoveryPort::DiscoveryPort(net::io_context& context, const wire::Discovery_deployment& deployment, const net::ip::address_v4& address,
                             OnMessage onMessage)
    : group_{deployment.multicast, deployment.port, wire::Protocol::udp},
      own_{address, deployment.port, wire::Protocol::udp},
      onMessage_{std::move(onMessage)},
      groupEar_{udp::socket{context}, wire::Direction::multicast},
      ownEar_{udp::socket{context}, wire::Direction::unicast} {
  groupEar_.socket.assign(udp::v4(), wire::open_group_socket(deployment.multicast, deployment.port, address).value().release());
  ownEar_.socket.assign(udp::v4(), wire::open_discovery_socket(address, deployment.port).value().release());
  Receive(groupEar_);
  Receive(ownEar_);
}

void DiscoveryPort::SendToGroup(std::vector<wire::Sd_entry> entries) {
  Send(group_, sessions_.next_multicast(), std::move(entries));
}

void DiscoveryPort::SendTo(const Endpoint& peer, std::vector<wire::Sd_entry> entries) {
  Send(peer, sessions_.next_unicast(peer), std::move(entries));
}

void DiscoveryPort::SendRawToGroup(const std::vector<unsigned char>& bytes) {
  wire::send_datagram(ownEar_.socket.native_handle(), group_, bytes);
}

void DiscoveryPort::Receive(Ear& ear) {
  ear.socket.async_receive_from(net::buffer(ear.datagram), ear.sender, [this, &ear](auto error, std::size_t size) {
    if (error == net::error::operation_aborted) return;
    if (!error) Take(ear, size);  // other errors are those of datagrams sent to a peer that is gone
    Receive(ear);
  });
}

void DiscoveryPort::Take(const Ear& ear, std::size_t size) {
  const Endpoint sender{ear.sender.address().to_v4(), ear.sender.port(), wire::Protocol::udp};
  if (sender == own_) return;
  const auto message = wire::decode_sd({ear.datagram.data(), size});
  if (!message) return;
  onMessage_(sender, *message, reboots_.received(sender, ear.direction, {message->session, message->reboot}));
}

void DiscoveryPort::Send(const Endpoint& to, wire::Session session, std::vector<wire::Sd_entry> entries) {
  const auto bytes = wire::encode_sd(
      {.session = session.id, .reboot = session.reboot, .unicast = true, .entries = std::move(entries), .dropped_entries = 0});
  wire::send_datagram(ownEar_.socket.native_handle(), to, bytes);  // one that cannot be sent is a lost one; the next offer repeats it
}

}  // namespace vehicle
