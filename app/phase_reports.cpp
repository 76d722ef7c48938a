#include "app/phase_reports.h"

#include "app/supervision.h"
#include "ara/log/logging.h"

#include <stdexcept>
#include <string_view>

namespace app {

namespace {

constexpr unsigned short kHealthChannelId = 1;
constexpr unsigned int kModeInit = 1;
constexpr unsigned int kModeRun = 2;
constexpr unsigned int kModeShutdown = 3;
constexpr unsigned short kCheckpointInitStart = 60071;  // the entity's own number once more
constexpr unsigned short kCheckpointInitEnd = 60072;
constexpr unsigned short kCheckpointShutdownStart = 60073;
constexpr unsigned short kCheckpointShutdownEnd = 60074;

struct Texts {
  std::string_view failed, unexpected;
};
// clang-format off
constexpr Texts kInitStart    {"Exception at reporting PHM status in phase INIT: ",
                               "Unexpected exception at reporting PHM status in phase INIT"};
constexpr Texts kInitEnd      {"Exception at reporting PHM status at end of phase INIT: ",
                               "Unexpected exception at reporting PHM status at the end of phase INIT"};  // "the", here alone, on purpose
constexpr Texts kShutdownStart{"Exception at reporting PHM status at start of phase SHUTDOWN: ",
                               "Unexpected exception at reporting PHM status at start of phase SHUTDOWN"};
constexpr Texts kShutdownEnd  {"Exception at reporting PHM status at end of phase SHUTDOWN: ",
                               "Unexpected exception at reporting PHM status at end of phase SHUTDOWN"};
// clang-format on

template <class Reports>
void Guarded(const Texts& texts, const Reports& reports) {
  try {
    reports();
  } catch (const std::runtime_error& error) {
    ara::log::LogInfo() << texts.failed << error.what();
  } catch (...) {  // health reporting never changes the flow of the program
    ara::log::LogInfo() << texts.unexpected;
  }
}

}  // namespace

// A phase begins with its mode and ends with its checkpoint: the order within the groups is mirrored.

void PhaseReports::InitBegins() const {
  Guarded(kInitStart, [this] {
    health_.SetHealthMode(kHealthChannelId, kModeInit);
    supervision_.CheckpointReached(kSupervisionId, kCheckpointInitStart);
  });
}

void PhaseReports::InitEnded() const {
  Guarded(kInitEnd, [this] {
    supervision_.CheckpointReached(kSupervisionId, kCheckpointInitEnd);
    health_.SetHealthMode(kHealthChannelId, kModeRun);
  });
}

void PhaseReports::ShutdownBegins() const {
  Guarded(kShutdownStart, [this] {
    health_.SetHealthMode(kHealthChannelId, kModeShutdown);
    supervision_.CheckpointReached(kSupervisionId, kCheckpointShutdownStart);
  });
}

void PhaseReports::ShutdownEnded() const {
  Guarded(kShutdownEnd, [this] {
    application_.ReportApplicationState(ara::exec::ApplicationState::kTerminating);
    supervision_.CheckpointReached(kSupervisionId, kCheckpointShutdownEnd);
  });
}

}  // namespace app
