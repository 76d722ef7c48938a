#pragma once

#include <string>
#include <utility>

#include "serve/config.h"

namespace zuva::serve {

/// The registry outside this process, where services are found: an HTTP server that takes a document for each service.
///
/// Any thread. One exchange takes two seconds at most, from the name's resolution to the answer's last byte; a failure is one warning
/// line and changes nothing else. Redirections are not followed.
class RegistryClient {
 public:
  explicit RegistryClient(RegistryAddress address) : address_{std::move(address)} {}

  /// PUT of the service's document.
  void Announce(const std::string& service, const std::string& document) const { Exchange("PUT", service, document); }
  /// DELETE of the service.
  void Withdraw(const std::string& service) const { Exchange("DELETE", service, {}); }

 private:
  void Exchange(const char* method, const std::string& service, const std::string& document) const;

  const RegistryAddress address_;
};

}  // namespace zuva::serve
