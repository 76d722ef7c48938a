#pragma once

#include <atomic>
#include <string>
#include <utility>

#include "serve/config.h"
#include "serve/name_lookup.h"

namespace zuva::serve {

/// The registry outside this process, where services are found: an HTTP server that takes a document for each service.
///
/// Any thread. One exchange takes two seconds at most, from the name's resolution to the answer's last byte; a failure is one warning
/// line and changes nothing else. Redirections are not followed.
class RegistryClient {
 public:
  /// `names` must outlive the client.
  explicit RegistryClient(RegistryAddress address, NameLookup& names = NameLookup::OfProcess())
      : address_{std::move(address)}, names_{names} {}
  ~RegistryClient() { names_.JoinEnded(); }
  RegistryClient(const RegistryClient&) = delete;
  RegistryClient& operator=(const RegistryClient&) = delete;

  /// PUT of the service's document.
  void Announce(const std::string& service, const std::string& document) const { Exchange("PUT", service, document); }
  /// DELETE of the service.
  void Withdraw(const std::string& service) const { Exchange("DELETE", service, {}); }
  /// From now on all exchanges together take two seconds at most.
  void BeginStop();

 private:
  void Exchange(const char* method, const std::string& service, const std::string& document) const;

  const RegistryAddress address_;
  NameLookup& names_;
  std::atomic<NameLookup::Clock::rep> stopBy_{NameLookup::Clock::time_point::max().time_since_epoch().count()};
};

}  // namespace zuva::serve
