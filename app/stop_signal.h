#pragma once

namespace app {

/// From now on SIGINT, SIGABRT and SIGTERM ask the process to stop: each writes one text to standard output and sets the stop flag.
void InstallStopSignals();

/// Whether one of them has come. Any thread.
bool StopRequested() noexcept;

}  // namespace app
