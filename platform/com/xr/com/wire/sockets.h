#pragma once

#include <boost/asio/ip/address_v4.hpp>
#include <cstdint>

#include "xr/com/wire/error.h"
#include "xr/com/wire/sd_message.h"
#include "xr/com/wire/socket_handle.h"

/// The UDP sockets of SOME/IP. All are non-blocking and closed on exec.
namespace xr::com::wire {

/// Bound to the multicast group and joined to it on the interface of `unicast`; takes what is sent to the group.
/// Others on this host may listen there too (address reuse).
Result<Socket_handle> open_group_socket(const boost::asio::ip::address_v4& group, std::uint16_t port,
                                        const boost::asio::ip::address_v4& unicast);

/// Bound to `unicast`:`port` with address reuse; also sends to groups, over the interface of `unicast`, to this host too and not beyond
/// the next router.
Result<Socket_handle> open_discovery_socket(const boost::asio::ip::address_v4& unicast, std::uint16_t port);

/// Bound to any free port of `unicast`, for a service's own messages.
Result<Socket_handle> open_message_socket(const boost::asio::ip::address_v4& unicast);

/// Where a socket is bound.
Result<Endpoint> local_endpoint(const Socket_handle& socket);

/// Sends a datagram from any thread, header and payload from where they stand.
boost::system::error_code send_datagram(int descriptor, const Endpoint& destination, Bytes front, Bytes rest = {});

}  // namespace xr::com::wire
