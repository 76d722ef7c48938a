#pragma once

#include "ara/log/logging.h"

namespace zuva {

/// The framework's own logger.
ara::log::Logger& GetLogger();

}  // namespace zuva
