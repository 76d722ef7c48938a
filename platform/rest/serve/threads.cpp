#include "serve/threads.h"

#include <csignal>
#include <utility>

#include <pthread.h>

namespace zuva::serve {
namespace {

/// Blocks all signals of the calling thread while it lives; a thread started meanwhile inherits that.
class BlockedSignals {
 public:
  BlockedSignals() {
    sigset_t all;
    sigfillset(&all);
    pthread_sigmask(SIG_SETMASK, &all, &before_);
  }
  ~BlockedSignals() { pthread_sigmask(SIG_SETMASK, &before_, nullptr); }
  BlockedSignals(const BlockedSignals&) = delete;
  BlockedSignals& operator=(const BlockedSignals&) = delete;

 private:
  sigset_t before_{};
};

}  // namespace

std::thread StartThread(const std::string& name, std::function<void()> body) {
  const BlockedSignals blocked;
  return std::thread{[shortName = name.substr(0, 15), run = std::move(body)] {
    pthread_setname_np(pthread_self(), shortName.c_str());
    run();
  }};
}

}  // namespace zuva::serve
