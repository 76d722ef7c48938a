#pragma once

#include "serve/client_stream.h"
#include "serve/http_request.h"
#include "serve/tokens.h"

namespace zuva::serve {

struct Hub;

/// Answers a checked request for an upgrade (RFC 6455) and adds the WebSocket, whose messages have these rights, to the hub's connections.
/// I/O thread only.
void AcceptWebSocket(Hub& hub, ClientStream stream, const HttpRequest& request, Rights rights);

}  // namespace zuva::serve
