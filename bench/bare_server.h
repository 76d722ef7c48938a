#pragma once

#include "bench/sockets.h"

#include <string>

namespace bench {

/// The least that an HTTP server on Beast does: parses each request, looks at nothing of it, and writes the same bytes. One thread.
/// Does not return.
void RunBareServer(const Socket& listener, const std::string& answer);

}  // namespace bench
