#pragma once

#include "ara/log/log_level.h"
#include "binding/serialization/json_text.h"

#include <functional>
#include <string>

namespace xr::com::log::target {

/// Puts the extra arguments of an incident beside it: whatever has a `write_argument(json)`, such as the data of a payload.
struct Serialization_helper {
  template <class... Arguments>
  static void serialize_additional_args(json::Json_text& json, const Arguments&... arguments) {
    (arguments.write_argument(json), ...);
  }
};

/// Writes incidents as lines of JSON to the binding's logger. Any thread. Never throws: an incident for which there is no memory is not
/// written.
class Dlt {
 public:
  static bool is_log_enabled(ara::log::LogLevel level);

  /// A disabled level costs no JSON. An incident that gives no JSON, for example by text that is not UTF-8, is not written.
  template <class Incident, class... Arguments>
  static void trace(const Incident& incident, const Arguments&... arguments) {
    if (!is_log_enabled(Incident::level)) return;
    trace_impl(text_of([&](json::Json_text& json) { to_json(json, incident); },
                       [&](json::Json_text& json) { Serialization_helper::serialize_additional_args(json, arguments...); }),
               Incident::level);
  }

 private:
  using Writer = std::function<void(json::Json_text&)>;

  static std::string text_of(const Writer& incident, const Writer& arguments);
  static void trace_impl(const std::string& text, ara::log::LogLevel level);
};

}  // namespace xr::com::log::target
