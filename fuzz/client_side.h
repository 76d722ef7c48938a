#pragma once

#include <boost/asio/io_context.hpp>

#include "ara/log/logging.h"
#include "xr/com/client_port.h"
#include "xr/com/transport/counted_warnings.h"
#include "xr/com/transport/datagram_reader.h"
#include "xr/com/transport/sd_channel.h"
#include "xr/com/transport/service_port.h"
#include "xr/com/wire/deployment.h"
#include "xr/com/wire/sockets.h"

namespace fuzz {

/// What the transport of the program has around its ports, without its thread: a target calls `io.poll()` instead. All fields go over UDP,
/// so that no input makes the process connect to anything.
struct ClientSide {
  ClientSide();

  boost::asio::io_context io{1};
  xr::com::wire::Deployment deployment;
  xr::com::transport::Receive_buffer buffer;
  xr::com::transport::Counted_warnings warnings;
  xr::com::transport::Sd_channel channel;

  xr::com::transport::Port_environment Environment() { return {io, deployment, channel, buffer, warnings}; }
};

/// A socket of the vehicle.
class VehicleSocket {
 public:
  VehicleSocket();
  const xr::com::wire::Endpoint& Place() const { return place_; }
  void Send(const xr::com::wire::Endpoint& to, xr::com::wire::Bytes datagram);
  /// The next datagram that has come, and where from; empty if there is none.
  std::vector<unsigned char> Receive(xr::com::wire::Endpoint& from);

 private:
  xr::com::wire::Socket_handle socket_;
  xr::com::wire::Endpoint place_;
};

/// Looks at every byte of a notification, so that one that is not there is seen.
class Sink final : public xr::com::cpp_binding::proxy::Event_sink {
 public:
  void event_updated(std::uint32_t status, const std::vector<unsigned char>& payload) override;
  void event_state_changed(xr::com::cpp_binding::proxy::Subscription_state) override {}
};

}  // namespace fuzz
