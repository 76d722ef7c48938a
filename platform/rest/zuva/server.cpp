#include "zuva/server.h"

#include <exception>
#include <thread>
#include <utility>
#include <vector>

#include "ara/rest/allocator.h"
#include "os/thread.h"
#include "zuva/logger.h"

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
  try {
    announcer_ = os::StartThread("zuva-announce", [services = GetServices()] {
      for (const auto& service : services) service->FinishAnnouncing();
    });
  } catch (const std::exception& error) {  // clients are served all the same
    GetLogger().LogWarn() << "The services could not be announced: " << error;
  }
}

bool Server::Stop(bool) {
  if (!std::exchange(started_, false)) return false;
  frontend_->Stop();  // first: a registry that does not answer holds no client up
  // Side by side, so that a registry that does not answer costs its time once.
  std::vector<std::thread> withdrawals;
  for (const auto& service : GetServices()) {
    try {
      withdrawals.reserve(withdrawals.size() + 1);
      withdrawals.push_back(os::StartThread("zuva-withdraw", [service] { service->Detach(); }));
    } catch (const std::exception&) {  // no thread to be had
      service->Detach();
    }
  }
  for (auto& withdrawal : withdrawals) withdrawal.join();
  if (announcer_.joinable()) announcer_.join();
  return true;
}

}  // namespace zuva
