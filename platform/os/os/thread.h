#pragma once

#include <csignal>
#include <functional>
#include <string>
#include <thread>

namespace os {

/// Blocks all signals for the calling thread while it lives. A thread started meanwhile keeps them blocked for good, so that the
/// process's signals land on the initial thread, which waits for them.
class SignalsBlocked {
 public:
  SignalsBlocked() noexcept;
  ~SignalsBlocked();
  SignalsBlocked(const SignalsBlocked&) = delete;
  SignalsBlocked& operator=(const SignalsBlocked&) = delete;

 private:
  sigset_t before_;
};

/// Starts a thread with all signals blocked. The name, as debuggers and `top -H` show it, is cut to the system's 15 characters.
/// Throws `std::system_error` if there is no thread to be had.
std::thread StartThread(const std::string& name, std::function<void()> run);

/// Names the calling thread, likewise.
void NameThisThread(const std::string& name);

}  // namespace os
