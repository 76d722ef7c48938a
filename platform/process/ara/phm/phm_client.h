#pragma once

#include "ara/phm/supervision_configuration.h"
#include "ara/process/notify_socket.h"

#include <string>

namespace ara::phm {

/// The way of supervision entities and health channels to the health service. Calls may come from several threads at once.
class Phm_client_interface {
 public:
  virtual ~Phm_client_interface() = default;

  /// Both throw `std::runtime_error` if the health service cannot be told.
  virtual void ReportCheckpoint(unsigned short supervision, unsigned short checkpoint) const = 0;
  virtual void ReportHealthMode(unsigned short channel, unsigned int mode) const = 0;
};

/// Reports to the service manager: the alive checkpoint of the process as its watchdog's `WATCHDOG=1`, every other checkpoint and each
/// health mode as a `STATUS=` line. Which checkpoint means alive is told by the supervision configuration of the process.
class Phm_client : public Phm_client_interface {
 public:
  explicit Phm_client(const std::string& processName);

  void ReportCheckpoint(unsigned short supervision, unsigned short checkpoint) const override;
  void ReportHealthMode(unsigned short channel, unsigned int mode) const override;

 private:
  const AliveSupervision* const alive_;  // none for a process without alive supervision
  process::NotifySocket serviceManager_;
};

}  // namespace ara::phm
