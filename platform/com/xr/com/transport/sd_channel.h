#pragma once

#include <boost/asio/io_context.hpp>
#include <functional>
#include <memory>
#include <vector>

#include "xr/com/transport/counted_warnings.h"
#include "xr/com/transport/datagram_reader.h"
#include "xr/com/wire/deployment.h"
#include "xr/com/wire/sd_message.h"
#include "xr/com/wire/session.h"

namespace xr::com::transport {

/// The two discovery sockets with the session counters of both directions. Belongs to the transport thread, but for the construction.
class Sd_channel {
 public:
  struct Handlers {
    std::function<void(const wire::Endpoint& peer)> rebooted;  ///< before the entries of the message that shows it
    std::function<void(const wire::Sd_entry& entry, const wire::Endpoint& peer)> entry;
    /// Whether a message offers something known at other endpoints.
    std::function<bool(const std::vector<wire::Sd_entry>& entries, const wire::Endpoint& peer)> moves;
  };

  /// @throws std::runtime_error that tells which socket cannot be opened and why.
  Sd_channel(boost::asio::io_context& io, const wire::Deployment& deployment, Receive_buffer& buffer, Counted_warnings& warnings);

  void start(Handlers handlers);
  void stop();

  void send_to_group(std::vector<wire::Sd_entry> entries);
  void send_to(const wire::Endpoint& peer, std::vector<wire::Sd_entry> entries);

 private:
  void received(wire::Direction direction, wire::Bytes datagram, const wire::Endpoint& sender);
  bool has_rebooted(wire::Direction direction, const wire::Sd_message& message, const wire::Endpoint& sender);
  void send(const wire::Endpoint& destination, wire::Session session, std::vector<wire::Sd_entry> entries);

  const wire::Endpoint group_;
  const wire::Endpoint own_;
  Counted_warnings& warnings_;
  std::shared_ptr<Datagram_reader> group_reader_;
  std::shared_ptr<Datagram_reader> unicast_reader_;
  wire::Outgoing_sessions sessions_;
  wire::Reboot_detection reboots_;
  Handlers handlers_;
};

}  // namespace xr::com::transport
