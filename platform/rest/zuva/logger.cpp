#include "zuva/logger.h"

namespace zuva {

ara::log::Logger& GetLogger() {
  static ara::log::Logger& logger = ara::log::CreateLogger("ZUVA", "REST framework");
  return logger;
}

}  // namespace zuva
