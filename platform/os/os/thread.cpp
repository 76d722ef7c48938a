#include "os/thread.h"

#include <pthread.h>

#include <utility>

namespace os {

SignalsBlocked::SignalsBlocked() noexcept {
  sigset_t all;
  ::sigfillset(&all);
  ::pthread_sigmask(SIG_SETMASK, &all, &before_);
}

SignalsBlocked::~SignalsBlocked() {
  ::pthread_sigmask(SIG_SETMASK, &before_, nullptr);
}

std::thread StartThread(const std::string& name, std::function<void()> run) {
  const SignalsBlocked blocked;  // inherited, so no signal can slip in between
  return std::thread{[name, run = std::move(run)] {
    NameThisThread(name);
    run();
  }};
}

void NameThisThread(const std::string& name) {
  constexpr std::size_t kLongest = 15;
  ::pthread_setname_np(::pthread_self(), name.substr(0, kLongest).c_str());
}

}  // namespace os
