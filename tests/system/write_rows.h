#pragma once

#include <string>
#include <vector>

namespace system_test {

using Lines = std::vector<std::string>;

/// What comes of a write that is sent.
enum class End { answered, silent, gone };

/// One write of a client, and all that follows from it.
struct WriteRow {
  const char* name;
  const char* body;
  unsigned status = 200;
  const char* detail = "";        ///< of an answer that is not the object
  const char* sent = "";          ///< the payload that reaches the vehicle; "" if nothing does
  Lines lines = {};               ///< all that the log tells of the write, in order
  const char* changes = "{}";     ///< the members that are others afterwards; a subscriber hears of them if there are any
  const char* fault = R"("ok")";  ///< how the vehicle answers; but for "ok" it keeps its value, and tells nothing
  bool overWebSocket = false;
  const char* records = nullptr;  ///< what the vehicle says beforehand, and what the object has then, if not as in the table's head
  const char* members = nullptr;
};

/// The writes of one object. The vehicle's records are told anew before each of them.
struct WriteTable {
  const char* resource;
  const char* type;  ///< of the object; "" if the resource has one without
  const char* field;
  const char* received;  ///< the line of a notification of the field
  const char* records;
  const char* members;  ///< all that the object has by the records but its identity and embedded objects
  std::vector<WriteRow> rows;
  Lines whenGone;  ///< of the first row, sent when the service has gone
};

/// The lines in which the answers of sets differ by field.
struct SetWords {
  const char* updating;
  const char* ended;
  const char* timeout;
  const char* response;
  const char* exception;
  const char* status;  ///< what the set is called where its outcome is judged
};

inline Lines operator+(Lines lines, const Lines& more) {
  lines.insert(lines.end(), more.begin(), more.end());
  return lines;
}

/// From the set's call to the judgement of its outcome.
inline Lines SetLines(const SetWords& words, End end) {
  const std::string status = std::string{"[Zuva][Zuva -> Someip] "} + words.status;
  if (end == End::gone) {
    return {words.updating, words.exception + std::string{"Service not available exception"},
            status + " - Error while setting values on the someip."};
  }
  Lines lines{words.updating, words.ended};
  if (end == End::silent) return lines + Lines{words.timeout, status + " - Response not received from the setter in due time."};
  if (*words.response) lines.emplace_back(words.response);
  return lines + Lines{status + " - Set response received."};
}

inline constexpr const char* kForeign = "Conflict: not allowed parameter(s) included";
inline constexpr const char* kNotInRange = "Bad Request: value not in allowed range";
inline constexpr const char* kWrongKind = "Bad Message";
inline constexpr const char* kInternal = "Internal Server Error";

/// Views and value controls; switch controls; past errors and the factory reset.
std::vector<WriteTable> ViewWrites();
std::vector<WriteTable> ValueControlWrites();
std::vector<WriteTable> SwitchControlWrites();
std::vector<WriteTable> ConfirmationWrites();

}  // namespace system_test
