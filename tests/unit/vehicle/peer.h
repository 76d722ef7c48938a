#pragma once

#include "tools/vehicle/server/discovery_port.h"
#include "xr/com/wire/message_stream.h"

#include <boost/asio/io_context.hpp>
#include <boost/asio/ip/tcp.hpp>
#include <boost/asio/ip/udp.hpp>

#include <map>
#include <optional>
#include <string>
#include <vector>

namespace vehicle {

/// A bare client of a server on the same io_context: its own sockets, no logic. Everything is driven by WaitFor of the test.
class Peer {
 public:
  struct Received {
    xr::com::wire::Header header;
    std::vector<unsigned char> payload;
  };

  Peer(boost::asio::io_context& context, const xr::com::wire::Deployment& deployment);

  /// The present offer of a service; nothing if none came or it was withdrawn.
  const xr::com::wire::Sd_entry* Offer(const std::string& shortName) const;
  void Find(const std::string& shortName);
  void Connect(const std::string& shortName);
  /// Asks for a subscription over the field's protocol; a TTL of 0 ends it.
  void Subscribe(const std::string& field, std::uint32_t ttl = 5);
  /// A get, or a set with a payload, over the field's protocol; TCP bytes go out one by one.
  void Request(const std::string& field, const std::vector<unsigned char>* payload = nullptr);
  /// Answers to subscriptions so far: event group to whether it was accepted, for the last one.
  std::map<std::uint16_t, bool> acks;
  std::vector<Received> received;  ///< messages of the services, over both protocols
  std::vector<xr::com::wire::Sd_message> discovery;

  const xr::com::wire::Service_deployment& Service(const std::string& shortName) const;
  std::pair<const xr::com::wire::Service_deployment*, const xr::com::wire::Field_deployment*> Field(const std::string& name) const;

 private:
  void OnDiscovery(const Endpoint& sender, const xr::com::wire::Sd_message& message);
  Endpoint Offered(const std::string& service, xr::com::wire::Protocol protocol) const;
  void ReceiveDatagrams();
  void ReadStream();

  xr::com::wire::Deployment deployment_;
  DiscoveryPort discovery_;
  std::map<std::uint16_t, xr::com::wire::Sd_entry> offers_;
  std::optional<Endpoint> server_;
  boost::asio::ip::udp::socket udp_;
  std::array<unsigned char, 65536> datagram_;
  boost::asio::ip::tcp::socket tcp_;
  xr::com::wire::Message_stream stream_;
  std::uint16_t session_ = 0;
};

}  // namespace vehicle
