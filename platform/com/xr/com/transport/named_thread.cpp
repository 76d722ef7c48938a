#include "xr/com/transport/named_thread.h"

#include <pthread.h>

#include <csignal>
#include <utility>

namespace xr::com::transport {

std::thread start_thread(const char* name, std::function<void()> run) {
  // The mask is inherited, so it is set before the thread exists: no signal can slip in between.
  sigset_t all, before;
  ::sigfillset(&all);
  ::pthread_sigmask(SIG_SETMASK, &all, &before);
  struct Restore {
    const sigset_t& mask;
    ~Restore() { ::pthread_sigmask(SIG_SETMASK, &mask, nullptr); }
  } restore{before};
  std::thread thread{std::move(run)};
  ::pthread_setname_np(thread.native_handle(), name);
  return thread;
}

}  // namespace xr::com::transport
