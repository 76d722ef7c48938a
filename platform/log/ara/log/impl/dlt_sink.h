#pragma once

#include "ara/log/impl/sink.h"
#include "ara/log/log_level.h"

#include <functional>
#include <memory>
#include <string>

namespace ara::log::impl {

/// A viewer turned the context of this logger up or down.
using LevelHandler = std::function<void(const Logger&, LogLevel)>;

/// Records as messages of the DLT daemon, by libdlt (AUTOSAR PRS_Dlt). Without a daemon libdlt keeps the last messages and tries again.
///
/// Each logger is a context of its own: an id of four characters, with the full context id and the description in the context's
/// description. libdlt registers what it needs once a process, so there is one such sink. `onLevel` is called by a thread of the
/// library's. Throws `std::runtime_error` if the library cannot be initialised.
std::unique_ptr<Sink> MakeDltSink(const std::string& applicationId, const std::string& description, LevelHandler onLevel);

}  // namespace ara::log::impl
