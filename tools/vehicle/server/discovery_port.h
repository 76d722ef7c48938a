#pragma once

#include "tools/vehicle/server/subscriber_list.h"
#include "xr/com/wire/deployment.h"
#include "xr/com/wire/session.h"

#include <boost/asio/ip/udp.hpp>

#include <array>
#include <functional>
#include <vector>

namespace vehicle {

/// Service discovery messages of one participant: sends them with their sessions, takes those of others from group and own address.
/// For the thread of its io_context, which must have ended its run before the port goes.
class DiscoveryPort {
 public:
  /// `rebooted`: the sender has started anew since its last message.
  using OnMessage = std::function<void(const Endpoint& sender, const xr::com::wire::Sd_message& message, bool rebooted)>;

  /// Throws boost::system::system_error if the address or the port cannot be had.
  DiscoveryPort(boost::asio::io_context& context, const xr::com::wire::Discovery_deployment& deployment,
                const boost::asio::ip::address_v4& address, OnMessage onMessage);

  void SendToGroup(std::vector<xr::com::wire::Sd_entry> entries);
  void SendTo(const Endpoint& peer, std::vector<xr::com::wire::Sd_entry> entries);
  /// Bytes as they are.
  void SendRawToGroup(const std::vector<unsigned char>& bytes);

 private:
  /// One of the two sockets with the datagram that it reads.
  struct Ear {
    boost::asio::ip::udp::socket socket;
    xr::com::wire::Direction direction;
    boost::asio::ip::udp::endpoint sender{};
    std::array<unsigned char, xr::com::wire::kMaximumMessage> datagram{};
  };
  void Receive(Ear& ear);
  void Take(const Ear& ear, std::size_t size);
  void Send(const Endpoint& to, xr::com::wire::Session session, std::vector<xr::com::wire::Sd_entry> entries);

  Endpoint group_, own_;
  OnMessage onMessage_;
  Ear groupEar_, ownEar_;
  xr::com::wire::Outgoing_sessions sessions_;
  xr::com::wire::Reboot_detection reboots_;
};

}  // namespace vehicle
