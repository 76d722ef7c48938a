#pragma once

#include "ara/exec/application_client.h"
#include "ara/phm/health_channel.h"
#include "ara/phm/supervision_entity.h"

namespace app {

/// Tells health management in which phase the process is. A report that fails costs a log line, and the rest of its group.
class PhaseReports {
 public:
  PhaseReports(const ara::phm::SupervisionEntity& supervision, const ara::phm::HealthChannel& health,
               const ara::exec::ApplicationClient& application)
      : supervision_{supervision}, health_{health}, application_{application} {}

  void InitBegins() const;
  void InitEnded() const;
  void ShutdownBegins() const;
  /// Also reports the process as terminating.
  void ShutdownEnded() const;

 private:
  const ara::phm::SupervisionEntity& supervision_;
  const ara::phm::HealthChannel& health_;
  const ara::exec::ApplicationClient& application_;
};

}  // namespace app
