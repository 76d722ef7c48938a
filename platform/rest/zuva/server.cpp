#include "zuva/server.h"

#include <pthread.h>
#include <signal.h>

#include "ara/rest/allocator.h"

namespace zuva {
namespace {

// Blocks all signals of this thread, so that a thread made meanwhile never handles one.
class SignalsBlocked {
 public:
  SignalsBlocked() {
    sigset_t all;
    sigfillset(&all);
    pthread_sigmask(SIG_SETMASK, &all, &before_);
  }
  ~SignalsBlocked() { pthread_sigmask(SIG_SETMASK, &before_, nullptr); }
  SignalsBlocked(const SignalsBlocked&) = delete;
  SignalsBlocked& operator=(const SignalsBlocked&) = delete;

 private:
  sigset_t before_;
};

}  // namespace

Server::Server(std::string name, const std::string& configPath)
    : XObjectEndpoint{ara::rest::Uuid{}, ara::rest::Uri::Builder{"/", ara::rest::GetDefaultAllocator()}.ToUri(), std::move(name)},
      frontend_{MakeFrontend(*this, configPath)} {}

Server::~Server() {
  Stop(true);
}

void Server::Start(bool) {
  if (started_) return;
  for (const auto& service : GetServices()) service->MarkAnnounced();
  frontend_->Start();
  started_ = true;
  const SignalsBlocked blocked;
  announcer_ = std::thread{[services = GetServices()] {
    pthread_setname_np(pthread_self(), "zuva-announce");
    for (const auto& service : services) service->FinishAnnouncing();
  }};
}

bool Server::Stop(bool) {
  if (!std::exchange(started_, false)) return false;
  if (announcer_.joinable()) announcer_.join();
  for (const auto& service : GetServices()) service->Detach();
  frontend_->Stop();
  return true;
}

}  // namespace zuva
