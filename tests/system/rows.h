#pragma once

#include <nlohmann/json.hpp>

#include <string>
#include <vector>

namespace system_test {

using Lines = std::vector<std::string>;

// The rows of `rows/*.json`, each with a "why" where it is not plain. All are played in their order.

/// One of these files as it is; members keep their order.
nlohmann::ordered_json ReadRows(const std::string& name);

/// What the vehicle says of a field, and what becomes of it.
struct ResourceRow {
  std::string name, field;
  std::string type;        ///< of the object to look at; "" if the resource has one without
  nlohmann::json records;  ///< as the vehicle tells them
  nlohmann::json members;  ///< all the object has then but its identity and embedded objects; null if there is no such object
  std::string notified;    ///< a line that stands before the others where the vehicle notifies; gets do not have it
  Lines lines;             ///< all that the log tells of the records, in order; `kNoType` stands for that of a record without a type
};
inline const std::string kNoType = "(no type)";
inline constexpr unsigned kNoSuchType = 4711;
std::vector<ResourceRow> ResourceRows();

/// What the two roads of a field say by themselves. An empty line is not told.
struct RoadTexts {
  std::string field, received, count, noType;
  std::string asked;  ///< the field's word in the lines of its get
  std::string noTypeAsked;
};
/// In the order of the gets.
std::vector<RoadTexts> AllRoadTexts();

/// One write of a client, and all that follows from it.
struct WriteRow {
  std::string name;
  nlohmann::json records;  ///< what the vehicle says beforehand,
  nlohmann::json members;  ///< and all that the object has then
  std::string body;
  bool overWebSocket;
  nlohmann::json fault;  ///< how the vehicle answers; but for "ok" it keeps its value, and tells nothing
  unsigned status;
  std::string detail;      ///< of an answer that is not the object
  std::string sent;        ///< the payload that reaches the vehicle in hex; "" if nothing does
  Lines lines;             ///< all that the log tells of the write, in order
  nlohmann::json changes;  ///< the members that are others afterwards; a subscriber hears of them if there are any
};

/// The writes of one object.
struct WriteTable {
  std::string resource, field;
  std::string received;  ///< the line of a notification of the field
  std::string type;      ///< of the object; "" if the resource has one without
  std::vector<WriteRow> rows;
  Lines whenGone;  ///< of the first row, sent when the service has gone
};
std::vector<WriteTable> WriteTables();

}  // namespace system_test
