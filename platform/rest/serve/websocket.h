#pragma once

#include <boost/asio/ip/tcp.hpp>

#include "serve/http_request.h"

namespace zuva::serve {

struct Hub;

/// Answers a checked request for an upgrade (RFC 6455) and adds the WebSocket to the hub's connections. I/O thread only.
void AcceptWebSocket(Hub& hub, boost::asio::ip::tcp::socket socket, const HttpRequest& request);

}  // namespace zuva::serve
