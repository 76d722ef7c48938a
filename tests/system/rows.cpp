#include "tests/system/rows.h"

#include <fstream>
#include <map>

namespace system_test {
namespace {

/// Posted members keep their order: which one a client is told of depends on it.
using Json = nlohmann::ordered_json;
using Words = std::map<std::string, std::string>;

std::string Text(const Json& row, const char* key) {
  return row.value(key, "");
}
nlohmann::json Plain(const Json& value) {
  return nlohmann::json::parse(value.dump());
}

/// The lines with each `<word>` filled in; a line that tells of a special state has none to tell of where none is given.
Lines Filled(const Json& lines, const Words& words) {
  Lines filled;
  for (std::string line : lines) {
    for (const auto& [name, word] : words) {
      const auto place = "<" + name + ">";
      for (auto at = line.find(place); at != std::string::npos; at = line.find(place)) line.replace(at, place.size(), word);
    }
    if (line.find("<given>") == std::string::npos) filled.push_back(line);
  }
  return filled;
}

/// What the lines of a write name: the object, what is written, and what stands for a member that is not.
Words WordsOf(const Json& object, const Json& row) {
  Words words{{"type", Text(object, "type")}, {"typeNumber", Text(object, "typeNumber")}};
  const auto given = row.value("words", Json::object());
  for (const auto& [name, word] : given.items()) words[name] = word;
  const bool hasState = words.contains("given");
  words.try_emplace("value", "100000");
  words["state"] = hasState ? words["given"] : "no_value";
  words["stateNumber"] = hasState ? "0" : "100000";
  return words;
}

Lines LinesOf(const Json& field, const char* end, const Words& words) {
  auto lines = Filled(field["sent"], words);
  const auto more = Filled(field[end], words);
  lines.insert(lines.end(), more.begin(), more.end());
  return lines;
}

WriteRow ReadWrite(const Json& field, const Json& object, const Json& row) {
  WriteRow write{.name = row["name"],
                 .records = Plain(row.contains("records") ? row["records"] : object["records"]),
                 .members = Plain(row.contains("members") ? row["members"] : object["members"]),
                 .body = row["body"].dump(),
                 .overWebSocket = row.value("overWebSocket", false),
                 .fault = Plain(row.value("fault", Json("ok"))),
                 .status = row.value("status", 200U),
                 .detail = Text(row, "detail"),
                 .sent = Text(row, "sent"),
                 .lines = {},
                 .changes = Plain(row.value("changes", Json::object()))};
  if (!write.sent.empty()) write.lines = LinesOf(field, write.fault == "silent" ? "silent" : "answered", WordsOf(object, row));
  if (row.value("refused", false)) write.lines = Filled(field["refused"], {});
  return write;
}

}  // namespace

Json ReadRows(const std::string& name) {
  return Json::parse(std::ifstream{std::string{TEST_ROWS} + "/" + name + ".json"});
}

std::vector<ResourceRow> ResourceRows() {
  std::vector<ResourceRow> rows;
  for (const auto& row : ReadRows("resources")) {
    rows.push_back(
        {row["name"], row["field"], row["type"], Plain(row["records"]), Plain(row["members"]), Text(row, "notified"), row["lines"]});
  }
  return rows;
}

std::vector<RoadTexts> AllRoadTexts() {
  std::vector<RoadTexts> texts;
  for (const auto& row : ReadRows("roads")) {
    texts.push_back({row["field"], row["received"], row["count"], row["noType"], row["asked"], row["noTypeAsked"]});
  }
  return texts;
}

std::vector<WriteTable> WriteTables() {
  const auto all = ReadRows("writes");
  std::vector<WriteTable> tables;
  for (const auto& object : all["objects"]) {
    const auto& field = all["fields"][std::string{object["field"]}];
    WriteTable table{field["resource"], object["field"], field["received"], object["type"], {}, {}};
    for (const auto& row : object["rows"]) table.rows.push_back(ReadWrite(field, object, row));
    table.whenGone = LinesOf(field, "gone", WordsOf(object, object["rows"].front()));
    tables.push_back(std::move(table));
  }
  return tables;
}

}  // namespace system_test
