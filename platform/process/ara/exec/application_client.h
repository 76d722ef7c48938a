#pragma once

#include "ara/process/notify_socket.h"

#include <cstdint>

namespace ara::exec {

enum class ApplicationState : std::uint8_t { kRunning = 0, kTerminating = 1 };

/// Reports the state of the process to execution management, which is the service manager here.
///
/// Running is told as `READY=1`, terminating as `STOPPING=1`. Any thread.
class ApplicationClient {
 public:
  ApplicationClient();

  /// Throws `std::runtime_error` if there is a service manager and it cannot be told.
  void ReportApplicationState(ApplicationState state) const;

 private:
  process::NotifySocket serviceManager_;
};

}  // namespace ara::exec
