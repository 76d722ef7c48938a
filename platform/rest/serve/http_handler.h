#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include <boost/asio/ip/address.hpp>

#include "serve/http_request.h"
#include "serve/response.h"
#include "serve/tokens.h"
#include "zuva/server.h"

namespace zuva::serve {

struct Hub;

/// What becomes of a request.
struct Verdict {
  enum class Kind : std::uint8_t {
    kAnswer,   ///< the response is it
    kWrite,    ///< the body goes to the destination, on a request thread
    kUpgrade,  ///< the connection becomes a WebSocket
  };

  Kind kind = Kind::kAnswer;
  Response response;
  Server::Destination destination;  ///< of kWrite
  std::string_view path;            ///< of kWrite: a part of the request's target
  Rights rights = Rights::kNone;    ///< of kUpgrade: what the socket's messages may do
};

/// Checks a request, whose body need not have come, against the rules on hosts, origins and tokens, and answers it unless it is a write or
/// an upgrade. `knownHost` is the connection's latest good host, so that a kept connection is asked once. I/O thread only.
Verdict Judge(Hub& hub, const HttpRequest& request, const boost::asio::ip::address& local, std::string& knownHost);

/// The answer to a write; without a reply it was refused unrun.
Response WriteResponse(const ServerReply* reply);

}  // namespace zuva::serve
