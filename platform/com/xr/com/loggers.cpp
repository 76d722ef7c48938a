#include "xr/com/loggers.h"

#include "ara/log/logging.h"

ara::log::Logger& ara::com::logger() {
  static auto& logger = ara::log::CreateLogger("ACOM", "Communication incidents");
  return logger;
}

ara::log::Logger& xr::com::cpp_binding::logger() {
  static auto& logger = ara::log::CreateLogger("XRCM", "SOME/IP transport");
  return logger;
}
