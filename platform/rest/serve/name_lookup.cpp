#include "serve/name_lookup.h"

#include <cstring>
#include <new>
#include <stdexcept>
#include <utility>

#include <netdb.h>

#include "os/thread.h"

namespace zuva::serve {
namespace {

// The C library alone: this may still run while the process ends.
NameLookup::Endpoints ResolveBySystem(const std::string& host, std::uint16_t port) {
  addrinfo hints{};
  hints.ai_socktype = SOCK_STREAM;
  hints.ai_flags = AI_ADDRCONFIG;
  addrinfo* first = nullptr;
  if (const int code = ::getaddrinfo(host.c_str(), nullptr, &hints, &first); code != 0) throw std::runtime_error{::gai_strerror(code)};
  const std::unique_ptr<addrinfo, decltype(&::freeaddrinfo)> owner{first, &::freeaddrinfo};
  NameLookup::Endpoints endpoints;
  for (const auto* entry = first; entry; entry = entry->ai_next) {
    auto& endpoint = endpoints.emplace_back();
    if (entry->ai_addrlen > endpoint.capacity()) throw std::runtime_error{"an address of another kind"};
    std::memcpy(endpoint.data(), entry->ai_addr, entry->ai_addrlen);
    endpoint.resize(entry->ai_addrlen);
    endpoint.port(port);
  }
  return endpoints;
}

}  // namespace

NameLookup& NameLookup::OfProcess() {
  alignas(NameLookup) static unsigned char storage[sizeof(NameLookup)];
  static NameLookup* const lookup = ::new (storage) NameLookup{ResolveBySystem};
  return *lookup;
}

NameLookup::~NameLookup() {
  if (thread_.joinable()) thread_.join();
}

NameLookup::Endpoints NameLookup::Find(const std::string& host, std::uint16_t port, Clock::time_point deadline) {
  std::unique_lock lock{mutex_};
  while (latest_ && !latest_->isDone) WaitLocked(lock, *std::shared_ptr{latest_}, deadline);
  JoinEndedLocked();
  const auto search = std::make_shared<Search>();
  thread_ = os::StartThread("registry-name", [this, search, host, port] { Run(*search, host, port); });
  latest_ = search;
  WaitLocked(lock, *search, deadline);
  JoinEndedLocked();
  if (search->error) std::rethrow_exception(search->error);
  return std::move(search->found);
}

void NameLookup::JoinEnded() {
  const std::lock_guard lock{mutex_};
  JoinEndedLocked();
}

void NameLookup::JoinEndedLocked() {
  if (thread_.joinable() && latest_->isDone) thread_.join();  // it has nothing left to do
}

void NameLookup::Run(Search& search, const std::string& host, std::uint16_t port) {
  Endpoints found;
  std::exception_ptr error;
  try {
    found = resolve_(host, port);
  } catch (...) {  // told to whoever waits
    error = std::current_exception();
  }
  const std::lock_guard lock{mutex_};
  search.found = std::move(found);
  search.error = std::move(error);
  search.isDone = true;
  ended_.notify_all();
}

void NameLookup::WaitLocked(std::unique_lock<std::mutex>& lock, const Search& search, Clock::time_point deadline) {
  const bool inTime = ended_.wait_until(lock, deadline, [&] { return search.isDone; });
  if (!inTime) throw std::runtime_error{"its name is not resolved in time"};
}

}  // namespace zuva::serve
