#pragma once

#include "ara/phm/phm_client.h"

namespace ara::phm {

/// Tells the health service in which mode the process is. Any thread; the client must outlive it.
class HealthChannel {
 public:
  explicit HealthChannel(const Phm_client_interface& client) : client_{client} {}

  /// Throws `std::runtime_error` if the health service cannot be told.
  void SetHealthMode(unsigned short channel, unsigned int mode) const { client_.ReportHealthMode(channel, mode); }

 private:
  const Phm_client_interface& client_;
};

}  // namespace ara::phm
