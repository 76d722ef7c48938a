#include "zuva/server.h"

#include "ara/rest/allocator.h"
#include "os/thread.h"

namespace zuva {

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
  announcer_ = os::StartThread("zuva-announce", [services = GetServices()] {
    for (const auto& service : services) service->FinishAnnouncing();
  });
}

bool Server::Stop(bool) {
  if (!std::exchange(started_, false)) return false;
  frontend_->Stop();  // first: a registry that does not answer holds no client up
  if (announcer_.joinable()) announcer_.join();
  for (const auto& service : GetServices()) service->Detach();
  return true;
}

}  // namespace zuva
