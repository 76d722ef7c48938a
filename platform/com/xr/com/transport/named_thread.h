#pragma once

#include <functional>
#include <thread>

namespace xr::com::transport {

/// Starts a thread with a name (at most 15 characters) and with all signals blocked, so that signals stay the application's.
std::thread start_thread(const char* name, std::function<void()> run);

}  // namespace xr::com::transport
