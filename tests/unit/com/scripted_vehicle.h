#pragma once

#include <boost/asio/ip/address_v4.hpp>
#include <chrono>
#include <cstdint>
#include <deque>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "tests/support/wait_for.h"
#include "xr/com/wire/deployment.h"
#include "xr/com/wire/message_stream.h"
#include "xr/com/wire/sd_message.h"
#include "xr/com/wire/session.h"
#include "xr/com/wire/socket_handle.h"

namespace com_test {

using Bytes = std::vector<unsigned char>;

/// A message that the vehicle has received, and how to answer it.
struct Received {
  xr::com::wire::Header header;
  Bytes payload;
  std::optional<xr::com::wire::Endpoint> from;  ///< none: over the TCP connection
};

/// A service instance that does nothing by itself: the test reads what came, with a deadline, and tells it what to send.
class Scripted_vehicle {
 public:
  Scripted_vehicle(const std::string& address, const xr::com::wire::Deployment& deployment, std::uint16_t service,
                   std::uint16_t instance = 1);

  // Discovery
  void offer(std::uint32_t ttl = 3);
  void offer_to(const xr::com::wire::Endpoint& peer);
  void withdraw();
  void send_sd(std::vector<xr::com::wire::Sd_entry> entries);
  void send_raw_sd(const Bytes& datagram);
  xr::com::wire::Sd_entry offer_entry(std::uint32_t ttl) const;
  /// The next discovery entry that fits; others before it are skipped. An entry of type find with service 0 when none came in time.
  xr::com::wire::Sd_entry wait_entry(const std::function<bool(const xr::com::wire::Sd_entry&)>& fits);
  xr::com::wire::Sd_entry wait_subscribe(const std::string& field);
  /// All entries about subscriptions of the next message that has any.
  std::vector<xr::com::wire::Sd_entry> wait_subscriptions();
  void answer(const xr::com::wire::Sd_entry& subscribe, std::uint32_t ttl, std::vector<xr::com::wire::Option> options = {});
  void answer_to(const xr::com::wire::Endpoint& peer, const xr::com::wire::Sd_entry& subscribe, std::uint32_t ttl,
                 std::vector<xr::com::wire::Option> options = {});
  /// Reads and acknowledges a subscription; its first endpoint.
  xr::com::wire::Endpoint accept_subscribe(const std::string& field);
  const xr::com::wire::Endpoint& client() const { return client_; }  ///< where the last entry came from

  /// Starts anew without a word: sessions from 1, and other ports.
  void reboot();
  /// Other ports, in the same life.
  void move();

  // Messages
  Bytes notification(const std::string& field, const Bytes& payload) const;
  void send_datagram(const xr::com::wire::Endpoint& to, const Bytes& datagram);
  bool accept();  ///< the next TCP connection
  void drop_connection() { connection_ = {}; }
  void send_stream(const Bytes& bytes);
  std::optional<Received> wait_request() { return next_request(static_cast<int>(test_support::kPatience.count())); }
  void reply(const Received& request, const Bytes& payload, xr::com::wire::Message_type type = xr::com::wire::Message_type::response,
             std::uint8_t code = 0);
  void send_answer(const Received& request, const Bytes& message);

  /// Plays a well-behaved service without waiting: takes a connection, acknowledges all subscriptions, and answers all requests with their
  /// own payload. `options` go into each acknowledgement.
  void serve(const std::vector<xr::com::wire::Option>& options = {});

 private:
  void open_ports();
  void send_sd_to(const xr::com::wire::Endpoint& peer, const xr::com::wire::Sd_entry& entry);
  std::optional<Received> next_request(int milliseconds);
  bool read_discovery(int milliseconds);
  const xr::com::wire::Field_deployment& field(const std::string& name) const { return *service_.find_field(name); }

  const boost::asio::ip::address_v4 address_;
  const xr::com::wire::Deployment deployment_;
  const xr::com::wire::Service_deployment& service_;
  const std::uint16_t instance_;
  xr::com::wire::Socket_handle discovery_, group_, udp_, acceptor_, connection_;
  xr::com::wire::Endpoint udp_endpoint_, tcp_endpoint_;
  xr::com::wire::Outgoing_sessions sessions_;
  xr::com::wire::Endpoint client_;
  std::deque<xr::com::wire::Sd_entry> entries_;
  xr::com::wire::Message_stream stream_;
};

}  // namespace com_test
