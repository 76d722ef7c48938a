#pragma once

#include "ara/log/log_level.h"

#include <functional>
#include <map>
#include <optional>
#include <string>
#include <string_view>

namespace ara::log::impl {

/// Which level the loggers of a context have: the one of their context id, else the common one.
struct Levels {
  LogLevel others = LogLevel::kInfo;
  std::map<std::string, LogLevel, std::less<>> byContext{};

  LogLevel Of(std::string_view contextId) const {
    const auto found = byContext.find(contextId);
    return found == byContext.end() ? others : found->second;
  }
};

/// Reads `verbose` or `TROV=info,ACOM=verbose,*=warn`: a level is one of fatal, error, warn, info, debug, verbose, and `*` stands for
/// all contexts that are not named, which otherwise have `others`. Nothing if any part of it is wrong or a context stands there twice.
std::optional<Levels> ReadLevels(std::string_view text, LogLevel others);

}  // namespace ara::log::impl
