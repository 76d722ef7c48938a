#pragma once

#include <boost/asio/io_context.hpp>
#include <functional>
#include <memory>
#include <utility>
#include <vector>

#include "xr/com/transport/alarm.h"
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

  /// Once, before `start`.
  void set_handlers(Handlers handlers) { handlers_ = std::move(handlers); }

  /// Begins to read, or takes up again what an exception has cut short.
  void start();

  /// Sends what waits, and reads no more.
  void stop();

  void send_to_group(std::vector<wire::Sd_entry> entries);

  /// Queues entries for one peer. What comes within 10 ms travels together, in its order, in messages of at most 1,400 bytes. What cannot
  /// be sent is tried again for a second.
  void send_to(const wire::Endpoint& peer, const std::vector<wire::Sd_entry>& entries);

 private:
  /// What waits for one peer.
  struct Waiting {
    wire::Endpoint peer;
    std::vector<wire::Sd_entry> entries{};
    unsigned failures = 0;
  };

  void received(wire::Direction direction, wire::Bytes datagram, const wire::Endpoint& sender);
  bool has_rebooted(wire::Direction direction, const wire::Sd_message& message, const wire::Endpoint& sender);
  void flush();
  void flush(Waiting& waiting);
  bool send(const wire::Endpoint& destination, wire::Session session, std::vector<wire::Sd_entry> entries);

  const wire::Endpoint group_;
  const wire::Endpoint own_;
  Counted_warnings& warnings_;
  std::shared_ptr<Datagram_reader> group_reader_;
  std::shared_ptr<Datagram_reader> unicast_reader_;
  wire::Outgoing_sessions sessions_;
  std::vector<Waiting> waiting_;
  Alarm flush_;
  wire::Reboot_detection reboots_;
  Handlers handlers_;
};

}  // namespace xr::com::transport
