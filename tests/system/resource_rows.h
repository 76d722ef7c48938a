#pragma once

#include <string>
#include <vector>

namespace system_test {

/// What the vehicle says of a field, and what becomes of it. The rows of a field are played in their order.
struct ResourceRow {
  const char* name;
  const char* field;
  const char* records;
  /// What the log tells of the records, in order, and nothing else; `kNoType` stands for the line of a record without a type.
  std::vector<std::string> lines;
  const char* type;           ///< of the object to look at; "" if the resource has one without
  const char* members;        ///< all it has then but its identity and embedded objects; "none" if there is no such object
  const char* notified = "";  ///< a line that stands before the others where the vehicle notifies; gets do not have it
};

/// What the two roads of a field say by themselves. An empty line is not told.
struct RoadTexts {
  const char* field;
  const char* received;
  const char* count;
  const char* noType;
  const char* asked;  ///< the field's word in the lines of its get
  const char* noTypeAsked;
};

inline const std::string kNoType = "(no type)";

/// The mediator's line of a translated member, such as "0,popup", or of anything else.
inline std::string Mapped(const std::string& label, const std::string& numberAndWord) {
  return "[CommMngr][Someip -> Zuva] " + label + " {value,mappedvalue} = {" + numberAndWord + "}";
}
inline std::string Mediated(const std::string& text) {
  return "[CommMngr][Someip -> Zuva] " + text;
}

/// Resources whose objects hold plain members, and those whose records are wide.
extern const std::vector<ResourceRow> kPlainRows, kWideRows;
/// In the order of the gets.
extern const std::vector<RoadTexts> kRoadTexts;

}  // namespace system_test
