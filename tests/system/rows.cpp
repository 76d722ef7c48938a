#include "tests/system/rows.h"

#include <cstdint>
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
std::string TextOf(const Json& value) {
  return value.is_string() ? value.get<std::string>() : value.dump();
}
nlohmann::json Plain(const Json& value) {
  return nlohmann::json::parse(value.dump());
}

std::string Filled(std::string text, const Words& words) {
  for (const auto& [name, word] : words) {
    const auto place = "<" + name + ">";
    for (auto at = text.find(place); at != std::string::npos; at = text.find(place)) text.replace(at, place.size(), word);
  }
  return text;
}

/// A record with its type in front; that of an object without one has none.
nlohmann::json Typed(const Json& record, const std::string& type) {
  auto typed = Plain(record);
  if (!type.empty()) typed["type"] = type;
  return typed;
}

/// `<member> {<number>,<word>}`, `<member> = <value>` and the unknown type stand for the mediator's lines, all others for themselves.
std::string MediatorsLine(const Json& road, const std::string& line) {
  const std::string start = "[CommMngr][Someip -> Zuva] ", noun = Text(road, "noun");
  const auto member = line.substr(0, line.find(' ')), rest = line.substr(line.find(' ') + 1);
  if (line == "(unknown type)") return start + noun + " type invalid";
  if (line.front() == '[' || line == kNoType) return line;
  if (rest.front() == '=') return start + noun + " [" + member + "] value " + rest;
  if (noun != "SwitchControl") return start + noun + " [" + member + "] {value,mappedvalue} = " + rest;
  return start + " Translated SwitchControl object [" + member + "]" + (member == "valueConfig" ? " (item from the array)" : "") + " {" +
         member + ",mapped_" + member + "} ={ " + rest.substr(1);
}

Json RoadOf(const Json& roads, const std::string& field) {
  for (const auto& road : roads)
    if (road["field"] == field) return road;
  return {};
}

ResourceRow ReadResource(const Json& road, const Json& object, const Json& row, const nlohmann::json& membersBefore) {
  const std::string type = object["type"];
  ResourceRow resource{row["name"], object["field"], type, nlohmann::json::array(), membersBefore, Text(row, "notified"), {}};
  auto lines = row.value("lines", Json::array());
  if (row.contains("record")) {
    resource.records.push_back(Typed(row["record"], type));
    resource.members = Plain(row["record"]);
  } else if (row.contains("unknown")) {
    auto unknown = Plain(row["unknown"]);
    resource.records.push_back(unknown);
    unknown["type"] = kNoSuchType;
    resource.records.push_back(unknown);
    lines = {kNoType, "(unknown type)"};
  } else {
    resource.records = Plain(row["records"]);
  }
  if (row.contains("members")) resource.members = Plain(row["members"]);
  for (const auto& line : lines) resource.lines.push_back(MediatorsLine(road, line));
  return resource;
}

/// What the lines and the payload of a write name: the object, what is written, and what stands for a member that is not.
Words WordsOf(const Json& field, const Json& object, const Json& row) {
  const auto& body = row["body"];
  const std::string property = field["property"];
  Words words{{"type", Text(object, "type")}, {"typeNumber", Text(object, "typeNumber")}, {"value", "100000"}};
  if (body.contains(property)) words["word"] = words["value"] = TextOf(body[property]);
  if (body.contains("specialState")) words["given"] = TextOf(body["specialState"]);
  words["state"] = words.contains("given") ? words["given"] : "no_value";
  words["stateNumber"] = words.contains("given") ? "0" : "100000";
  words["number"] = row.contains("number") ? TextOf(row["number"]) : words["value"];
  return words;
}

/// Of the lines that tell of a special state none is told where none is given.
Lines LinesOf(const Json& field, const std::vector<const char*>& parts, const Words& words) {
  Lines lines;
  for (const auto* part : parts) {
    for (const auto& line : field[part]) {
      auto filled = Filled(line, words);
      if (filled.find("<given>") == std::string::npos) lines.push_back(std::move(filled));
    }
  }
  return lines;
}

/// The payload with the number in four bytes.
std::string Payload(const std::string& pattern, const std::string& number) {
  std::string bytes;
  if (pattern.find("<number>") == std::string::npos) return pattern;
  const auto value = static_cast<std::uint32_t>(std::stoul(number));
  for (unsigned shift = 32; shift > 0; shift -= 4) {
    bytes += "0123456789abcdef"[value >> (shift - 4) & 15U];
    if (shift % 8 == 4 && shift > 4) bytes += ' ';
  }
  return Filled(pattern, {{"number", bytes}});
}

WriteRow ReadWrite(const Json& all, const Json& object, const Json& row) {
  const auto& field = all["fields"][Text(object, "field")];
  const auto& prepared = row.contains("record") ? row : object;
  WriteRow write{.name = row["name"],
                 .records = nlohmann::json::array({Typed(prepared["record"], object["type"])}),
                 .members = Plain(prepared.contains("members") ? prepared["members"] : prepared["record"]),
                 .body = row["body"].dump(),
                 .overWebSocket = row.value("ws", false),
                 .fault = Plain(row.value("fault", Json("ok"))),
                 .status = 200,
                 .detail = "",
                 .sent = "",
                 .lines = {},
                 .changes = nlohmann::json::object()};
  const auto answer = [&](const Json& one) {
    write.status = one[0];
    write.detail = one[1];
  };
  if (row.contains("refused")) write.lines = LinesOf(field, {"refused"}, {});
  if (row.contains("answer") || row.contains("refused")) {
    answer(all["answers"][Text(row, row.contains("answer") ? "answer" : "refused")]);
    return write;
  }
  const bool silent = write.fault == "silent";
  const auto words = WordsOf(field, object, row);
  write.sent = row.contains("sent") ? Text(row, "sent") : Payload(object["payload"], words.at("number"));
  write.lines = LinesOf(field, {"sent", "ended", silent ? "silent" : "answered"}, words);
  if (silent) {
    answer(all["answers"]["internal"]);
  } else if (object.contains("taken")) {
    answer(object["taken"]);
  }
  if (write.status == 200 || (write.status < 300 && write.fault == "ok")) {
    const auto body = Plain(row["body"]);
    for (const auto& [name, value] : body.items())
      if (name != "id" && write.members.value(name, nlohmann::json{}) != value) write.changes[name] = value;
  }
  return write;
}

}  // namespace

Json ReadRows(const std::string& name) {
  return Json::parse(std::ifstream{std::string{TEST_ROWS} + "/" + name + ".json"});
}

std::vector<ResourceRow> ResourceRows() {
  const auto roads = ReadRows("roads");
  std::vector<ResourceRow> rows;
  for (const auto& object : ReadRows("resources")) {
    const auto road = RoadOf(roads, object["field"]);
    nlohmann::json members;
    for (const auto& row : object["rows"]) {
      rows.push_back(ReadResource(road, object, row, members));
      members = rows.back().members;
    }
  }
  return rows;
}

std::vector<RoadTexts> AllRoadTexts() {
  std::vector<RoadTexts> texts;
  for (const auto& row : ReadRows("roads"))
    texts.push_back({row["field"], row["received"], row["count"], Text(row, "noType"), row["asked"], Text(row, "noTypeAsked")});
  return texts;
}

std::vector<WriteTable> WriteTables() {
  const auto all = ReadRows("writes");
  std::vector<WriteTable> tables;
  for (const auto& object : all["objects"]) {
    const auto& field = all["fields"][Text(object, "field")];
    WriteTable table{field["resource"], object["field"], field["received"], object["type"], {}, {}};
    for (const auto& row : object["rows"]) table.rows.push_back(ReadWrite(all, object, row));
    table.whenGone = LinesOf(field, {"sent", "gone"}, WordsOf(field, object, object["rows"].front()));
    tables.push_back(std::move(table));
  }
  return tables;
}

}  // namespace system_test
