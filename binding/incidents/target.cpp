#include "binding/incidents/target.h"

#include "ara/log/logging.h"
#include "binding/incidents/incident_json.h"
#include "xr/com/loggers.h"

#include <exception>

namespace xr::com::log::target {

bool Dlt::is_log_enabled(ara::log::LogLevel level) {
  return ara::com::logger().IsLogEnabled(level);
}

std::string Dlt::text_of(const Writer& incident, const Writer& arguments) {
  try {
    json::Json_text json;
    json.begin_object();
    json.key("1_incident");
    json.begin_object();
    incident(json);
    json.end_object();
    arguments(json);
    json.end_object();
    return xr::com::cpp_binding::log::detail::cut_to(json.take(), ara::log::WholeLine::kLimit);
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
