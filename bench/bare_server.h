#pragma once

#include "bench/sockets.h"

#include <cstddef>
#include <string>

/// The least that a server on Beast does, on one thread. None of these returns.
namespace bench {

/// Parses each HTTP request, looks at nothing of it, and writes the same bytes.
void RunBareServer(const Socket& listener, const std::string& answer);

/// Upgrades each connection, and for each message of this size that comes by `trigger` sends the same text to all of them.
void RunBareFanOut(const Socket& listener, const Socket& trigger, std::size_t messageSize, const std::string& text);

}  // namespace bench
