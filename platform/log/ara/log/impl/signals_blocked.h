#pragma once

#include <csignal>

namespace ara::log::impl {

/// Blocks all signals for the calling thread while it lives. A thread started meanwhile keeps them blocked for good, so that the
/// process's signals land on the threads of the application.
class SignalsBlocked {
 public:
  SignalsBlocked() noexcept {
    sigset_t all;
    ::sigfillset(&all);
    ::pthread_sigmask(SIG_SETMASK, &all, &before_);
  }
  ~SignalsBlocked() { ::pthread_sigmask(SIG_SETMASK, &before_, nullptr); }
  SignalsBlocked(const SignalsBlocked&) = delete;
  SignalsBlocked& operator=(const SignalsBlocked&) = delete;

 private:
  sigset_t before_;
};

}  // namespace ara::log::impl
