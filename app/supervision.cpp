#include "app/supervision.h"

#include "app/pause.h"
#include "ara/log/logging.h"
#include "os/thread.h"

#include <atomic>
#include <stdexcept>

namespace app {

namespace {

constexpr unsigned short kCheckpointAlive = 60075;

std::atomic<unsigned char> supervisionStopFlag{0};

void ReportAlive(const ara::phm::SupervisionEntity& entity) {
  try {
    entity.CheckpointReached(kSupervisionId, kCheckpointAlive);
  } catch (const std::runtime_error& error) {
    ara::log::LogInfo() << "Exception at reporting PHM checkpoint: " << error.what();
  } catch (...) {  // health reporting never changes the flow of the program
    ara::log::LogInfo() << "Unexpected exception at reporting PHM checkpoint";
  }
}

void Supervise(const ara::phm::SupervisionEntity& entity) {
  while (supervisionStopFlag.load() == 0) {
    ReportAlive(entity);
    SleepHalfSecond();
  }
}

}  // namespace

std::thread StartSupervision(const ara::phm::SupervisionEntity& entity) {
  return os::StartThread("supervision", [&entity] { Supervise(entity); });
}

void StopSupervision(std::thread& supervision) {
  supervisionStopFlag.store(1);
  if (supervision.joinable()) supervision.join();
}

}  // namespace app
