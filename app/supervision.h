#pragma once

#include "ara/phm/supervision_entity.h"

#include <thread>

namespace app {

inline constexpr unsigned short kSupervisionId = 60071;

/// Starts the thread that reports the alive checkpoint at once and then every 500 ms, whatever becomes of the reports: one that fails
/// costs a log line. The entity must outlive the thread.
std::thread StartSupervision(const ara::phm::SupervisionEntity& entity);

/// Asks the thread to end, and joins it: at most one period later. Harmless on an empty thread.
void StopSupervision(std::thread& supervision);

}  // namespace app
