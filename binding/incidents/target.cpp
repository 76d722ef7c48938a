#include "binding/incidents/target.h"

#include "ara/log/logging.h"
#include "binding/incidents/incident_json.h"
#include "xr/com/loggers.h"

#include <nlohmann/json.hpp>

#include <exception>

namespace xr::com::log::target {

bool Dlt::is_log_enabled(ara::log::LogLevel level) {
  return ara::com::logger().IsLogEnabled(level);
}

std::string Dlt::text_of(const Writer& incident, const Writer& arguments) {
  try {
    nlohmann::ordered_json json;
    incident(json["1_incident"]);
    arguments(json);
    return xr::com::cpp_binding::log::detail::cut_to(json.dump(), ara::log::WholeLine::kLimit);
  } catch (const std::exception&) {  // what cannot be told as JSON is not told
    return {};
  }
}

void Dlt::trace_impl(const std::string& text, ara::log::LogLevel level) {
  using ara::log::LogLevel;
  if (text.empty()) return;
  switch (level) {
    case LogLevel::kFatal:
    case LogLevel::kError:
    case LogLevel::kWarn:
    case LogLevel::kInfo:
    case LogLevel::kVerbose:
      break;
    default:
      level = LogLevel::kDebug;
  }
  ara::log::LogStream{level, ara::com::logger()} << ara::log::WholeLine{text};
}

}  // namespace xr::com::log::target
