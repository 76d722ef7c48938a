#pragma once

#include "ara/phm/phm_client.h"

namespace ara::phm {

/// The supervised part of a process, which proves its progress by checkpoints. Any thread; the client must outlive it.
class SupervisionEntity {
 public:
  explicit SupervisionEntity(const Phm_client_interface& client) : client_{client} {}

  /// Throws `std::runtime_error` if the health service cannot be told.
  void CheckpointReached(unsigned short supervision, unsigned short checkpoint) const { client_.ReportCheckpoint(supervision, checkpoint); }

 private:
  const Phm_client_interface& client_;
};

}  // namespace ara::phm
