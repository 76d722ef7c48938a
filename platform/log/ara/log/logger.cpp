#include "ara/log/logger.h"

#include <utility>

namespace ara::log {

Logger::Logger(std::string contextId, std::string description, LogLevel level)
    : contextId_{std::move(contextId)}, description_{std::move(description)}, level_{level} {}

}  // namespace ara::log
