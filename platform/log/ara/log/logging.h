#pragma once

#include "ara/log/log_level.h"
#include "ara/log/log_stream.h"
#include "ara/log/logger.h"

#include <string>

namespace ara::log {

/// Starts the logging of the process; to be called once.
///
/// The environment variable ARA_LOG selects where lines go: `dlt`, `console` (standard error) or `file:<path>`; without it `mode`
/// decides, with `path` for the file. A console or file line reads
/// `2026-11-24T10:15:30.123456Z <level> <application id> <context id> <text>` with control characters as `\xNN`.
/// All loggers, those that exist already too, get the level `defaultLevel`, or what ARA_LOG_LEVEL says: one word of `fatal`, `error`,
/// `warn`, `info`, `debug`, `verbose`, or pairs by context id, `TROV=info,ACOM=verbose`, with `*` for all others. A wrong value is
/// one warning and changes nothing. With DLT a viewer turns each context up or down at run time.
///
/// Lines are written by a thread of its own, from a ring of 8 MiB; when the ring is full records are dropped and one warning
/// `N log records lost` follows. Records made before this call are kept, up to a bound, and written first. A terminate handler is
/// put before the present one, and both it and the end of the process wait until what was logged is written.
///
/// Throws `std::runtime_error` that tells the reason if the sink cannot be opened, or if logging has been started already.
void InitLogging(std::string applicationId, const std::string& description, LogLevel defaultLevel, LogMode mode, std::string path);

/// The logger of this context id and description: made at the first call, the same one afterwards. Any thread, also before `InitLogging`.
Logger& CreateLogger(std::string contextId, std::string description);

/// Streams of the process's default logger. Any thread, also before `InitLogging`.
LogStream LogFatal() noexcept;
LogStream LogError() noexcept;
LogStream LogWarn() noexcept;
LogStream LogInfo() noexcept;
LogStream LogDebug() noexcept;
LogStream LogVerbose() noexcept;

/// Waits until everything logged so far is with the sink, at most 200 ms. Any thread; does nothing before `InitLogging`.
void DrainLogging() noexcept;

}  // namespace ara::log
