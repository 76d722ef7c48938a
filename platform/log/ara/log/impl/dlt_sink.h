#pragma once

#include "ara/log/impl/sink.h"

#include <memory>
#include <string>

namespace ara::log::impl {

/// Records as messages of the DLT daemon, by libdlt (AUTOSAR PRS_Dlt). Without a daemon libdlt keeps the last messages and tries again.
///
/// Each logger is a context of its own: an id of four characters, with the full context id and the description in the context's
/// description. libdlt registers what it needs once a process, so there is one such sink.
std::unique_ptr<Sink> MakeDltSink(const std::string& applicationId, const std::string& description);

}  // namespace ara::log::impl
