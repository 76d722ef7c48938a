#pragma once

#include "bench/ping_pong.h"
#include "bench/sockets.h"

#include <cstddef>
#include <string>

/// The least that a server on Beast does, on one thread but where it says otherwise. None of these returns.
namespace bench {

/// Parses each HTTP request, looks at nothing of it, and writes the same bytes.
void RunBareServer(const Socket& listener, const std::string& answer);

/// The same, but that each request has a round trip with another process before it is answered: a message of the first size, and its
/// reply. Either all on the one thread, or handed to a second one that sends and waits, a third that receives and wakes it, and back.
enum class Trip { oneThread, threeQueues };
void RunAskingServer(const Socket& listener, const std::string& answer, Trip trip, const Socket& other, const Sizes& sizes);

/// Upgrades each connection, and for each message of this size that comes by `trigger` sends the same text to all of them.
void RunBareFanOut(const Socket& listener, const Socket& trigger, std::size_t messageSize, const std::string& text);

}  // namespace bench
