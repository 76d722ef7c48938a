#pragma once

#include "tools/vehicle/server/discovery_port.h"
#include "tools/vehicle/server/field_host.h"
#include "tools/vehicle/server/service_port.h"

#include <boost/asio/steady_timer.hpp>

#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace vehicle {

/// The server role of the SOME/IP transport: offers the services of a deployment, answers finds, takes subscriptions and requests, sends
/// notifications. It holds no values; the FieldHost does. All on the thread of its io_context, which must have ended its run before it
/// goes.
///
/// Offers go out every second with a time to live of three. A field's notifier sends the present value after each new accepted
/// subscription and not after a renewal.
class ServiceServer {
 public:
  /// Opens all sockets on `address`. Throws boost::system::system_error.
  ServiceServer(boost::asio::io_context& context, const xr::com::wire::Deployment& deployment, const boost::asio::ip::address_v4& address,
                FieldHost& host);

  /// Services by the last part of their names. Offering what is offered, or withdrawing what is not, does nothing.
  void Offer(std::string_view service);
  void StopOffer(std::string_view service);
  /// Sends the host's present value of the field to its subscribers.
  void Notify(const std::string& field);
  /// Bytes as they are to the field's subscribers, over its protocol.
  void SendRaw(const std::string& field, const Bytes& bytes);
  void SendRawDiscovery(const Bytes& bytes) { discovery_.SendRawToGroup(bytes); }
  void BreakConnections();

 private:
  using Field = xr::com::wire::Field_deployment;
  struct Service {
    xr::com::wire::Service_deployment deployment;
    std::string shortName;
    std::unique_ptr<ServicePort> port;
    bool offered = false;
    std::uint16_t nextNotification = 0;  // the session id of the last one sent
  };

  void OfferCyclically();
  void OnDiscovery(const Endpoint& sender, const xr::com::wire::Sd_message& message, bool rebooted);
  bool IsSought(const Service& service, const xr::com::wire::Sd_entry& entry) const;
  void OnSubscribe(const Endpoint& sender, const xr::com::wire::Sd_entry& entry, std::vector<xr::com::wire::Sd_entry>& answers,
                   std::vector<Subscription>& isNew);
  void OnRequest(Service& service, const Endpoint& peer, const xr::com::wire::Message& message);
  void OnConnection(const Endpoint& peer, bool open);
  void Forget(const std::vector<Subscription>& subscriptions, const char* reason);
  void SendValue(Service& service, const Field& field, const Bytes& value, const std::vector<Endpoint>& to);
  Service& ServiceNamed(std::string_view shortName);
  std::pair<Service*, const Field*> FieldNamed(std::string_view field);

  FieldHost& host_;
  SubscriberList subscribers_;
  std::vector<std::unique_ptr<Service>> services_;
  DiscoveryPort discovery_;
  boost::asio::steady_timer offerTimer_;
};

}  // namespace vehicle
