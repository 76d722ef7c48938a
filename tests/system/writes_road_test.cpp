#include "tests/system/rows.h"
#include "tests/system/system_test.h"

#include <algorithm>
#include <fstream>
#include <map>

namespace system_test {
namespace {

/// What a client got: an object's members, or a text.
struct WriteAnswer {
  unsigned status;
  json object;
  std::string detail;
};

json MembersOf(const json& element) {
  auto members = json::object();
  for (const auto& [name, value] : element.items())
    if (name != "id" && name != "name" && name != "uri" && name != "type" && !value.is_object()) members[name] = value;
  return members;
}

/// The road of each write, from a client to the vehicle and back. One vehicle and one bridge for all rows of a test.
class WritesRoad : public SystemTest {
 protected:
  void SetUp() override {
    json faults;  // the gets fail, so that none comes between and puts the vehicle's value back
    for (const auto& table : tables_) faults[table.field] = {{"get", {{"error", 1}}}};
    const auto file = root_.Path() / "scenario.json";
    std::ofstream{file} << json{{"faults", faults}};
    StartVehicle(file.string());
    bridge_.Start();
    ASSERT_TRUE(vehicle_->WaitUntilSubscribed());
    for (const auto& table : tables_) {
      EXPECT_TRUE(bridge_.Log().WaitForLine(table.received)) << table.field;
      told_[table.field] = 1;  // the present value, which has no records
    }
    Set("chargingPlugs", {{{"type", "frontLeft1"}, {"plugConnectionState", "connected"}}});  // makes the locks of its own
    ASSERT_TRUE(WaitForElement("switchControls", "frontLeft1PlugLockState"));
    writer_.emplace(bridge_.Ws());
    subscriber_.emplace(bridge_.Ws());
    for (const char* service : {"/ChargingManagementCore", "/FactoryReset"}) subscriber_->Subscribe(service);
  }

  /// The element of the table's object; null if there is none.
  json Element(const WriteTable& table) {
    for (auto& element : Http().Get(table.resource).Json())
      if (element.value("type", "") == table.type) return element;
    return {};
  }
  void ExpectMembers(const WriteTable& table, const json& members) {
    EXPECT_TRUE(WaitFor([&] { return MembersOf(Element(table)) == members; }, Patience())) << Element(table) << "\nin place of " << members;
  }
  /// Waits until the bridge has taken all that the vehicle has told of the field.
  void ExpectToldOnceMore(const WriteTable& table) {
    EXPECT_TRUE(bridge_.Log().WaitForLine(table.received, ++told_[table.field], Patience())) << "no notification";
  }
  void Prepare(const WriteTable& table, const WriteRow& row) {
    Set(table.field.c_str(), row.records);
    ExpectToldOnceMore(table);
    ExpectMembers(table, row.members);
  }

  WriteAnswer Write(const WriteRow& row, const std::string& path) {
    if (row.overWebSocket) {
      const auto answer = writer_->Ask({{"action", "set"}, {"path", path}, {"value", json::parse(row.body)}});
      if (answer.contains("error")) return {answer["error"].value("number", 0U), {}, answer["error"].value("message", "")};
      return {answer.value("status", 0U), answer.value("data", json{}), answer.value("message", "")};
    }
    const auto answer = Http().Post(path, row.body);
    const auto body = answer.Json();
    if (answer.status == 200) return {answer.status, body, ""};
    return {answer.status, {}, body.value("detail", "")};
  }

  /// What the log tells of writes. Of all else it tells in the other direction's words.
  Lines WriteLines() {
    Lines lines;
    for (const auto& line : bridge_.Log().Lines()) {
      const auto has = [&](const char* part) { return line.text.find(part) != std::string::npos; };
      if (line.context == "TROV" && !has("-> Zuva]") && !has(" notification")) lines.push_back(line.text);
    }
    return lines;
  }
  /// The lines since the last call; as many as are expected, or more.
  Lines NextWriteLines(std::size_t expected) {
    WaitFor([&] { return WriteLines().size() >= read_ + expected; }, Patience());
    auto lines = WriteLines();
    lines.erase(lines.begin(), lines.begin() + static_cast<std::ptrdiff_t>(std::min(read_, lines.size())));
    read_ += lines.size();
    return lines;
  }

  /// The sets that the vehicle has got since the last call; as many as are expected, or more.
  std::vector<std::string> NextSets(std::size_t expected) {
    const auto all = [this] {
      std::vector<std::string> sets;
      for (const auto& event : vehicle_->Events())
        if (event.value("event", "") == "set") sets.push_back(event.value("field", "") + ": " + event.value("payload", ""));
      return sets;
    };
    WaitFor([&] { return all().size() >= sets_ + expected; }, Patience());
    auto sets = all();
    sets.erase(sets.begin(), sets.begin() + static_cast<std::ptrdiff_t>(std::min(sets_, sets.size())));
    sets_ += sets.size();
    return sets;
  }

  /// All that the subscriber has heard since the last call.
  std::vector<json> Heard() {
    std::vector<json> events;
    subscriber_->Ask({{"action", "get"}, {"path", "/"}});  // what was told before is here with its answer
    while (auto event = subscriber_->Receive(0ms)) events.push_back(std::move(*event));
    return events;
  }
  void ExpectHeard(const std::string& path, const json& changes, const json& members) {
    const auto events = Heard();
    ASSERT_EQ(events.size(), changes.empty() ? 0U : 1U) << json(events);
    if (changes.empty()) return;
    EXPECT_EQ(events[0].value("event", ""), "changed");
    EXPECT_EQ(events[0].value("path", ""), path);
    EXPECT_EQ(MembersOf(events[0].value("data", json::object())), members);
  }

  void Play(const WriteTable& table, const WriteRow& row) {
    Fault(table.field.c_str(), {{"set", row.fault}});
    Prepare(table, row);
    const auto path = Element(table).value("uri", "");
    NextWriteLines(0);
    Heard();

    const auto start = std::chrono::steady_clock::now();
    const auto answer = Write(row, path);
    EXPECT_LT(SecondsSince(start), 1.6);
    auto members = row.members;
    members.update(row.changes);
    EXPECT_EQ(answer.status, row.status);
    EXPECT_EQ(answer.detail, row.detail);
    if (row.status == 200) {
      EXPECT_EQ(MembersOf(answer.object), members);
    }
    std::vector<std::string> sent;
    if (!row.sent.empty()) sent.push_back(table.field + ": " + row.sent);
    EXPECT_EQ(NextSets(sent.size()), sent);
    EXPECT_EQ(NextWriteLines(row.lines.size()), row.lines);
    if (!row.sent.empty() && row.fault == "ok") ExpectToldOnceMore(table);
    ExpectMembers(table, members);
    ExpectHeard(path, row.changes, members);
  }

  /// A test that has failed hurries on to its other rows.
  static std::chrono::milliseconds Patience() { return HasFailure() ? 300ms : test_support::kPatience; }

  const std::vector<WriteTable> tables_ = WriteTables();
  std::optional<test_support::WsClient> writer_, subscriber_;
  std::map<std::string, std::size_t> told_;  // the notifications of each field
  std::size_t read_ = 0, sets_ = 0;          // lines of writes and sets that have been looked at
};

TEST_F(WritesRoad, EachWriteIsJudgedSentAnsweredAndShown) {
  for (const auto& table : tables_) {
    for (const auto& row : table.rows) {
      SCOPED_TRACE(table.field + " " + table.type + " " + row.name);
      Play(table, row);
    }
  }
}

TEST_F(WritesRoad, WithoutTheServiceEachWriteFailsAndChangesNothing) {
  for (const auto& table : tables_) Prepare(table, table.rows.front());
  constexpr const char* kNoticed = "OnServiceFound No service available";
  const auto before = bridge_.Log().Count(kNoticed);
  vehicle_->Command({{"stopOffer", "ChargingManagementCore"}});
  ASSERT_TRUE(bridge_.Log().WaitForLine(kNoticed, before + 1));
  NextWriteLines(0);
  Heard();
  for (const auto& table : tables_) {
    SCOPED_TRACE(table.field + " " + table.type);
    const auto path = Element(table).value("uri", "");
    const auto answer = Write(table.rows.front(), path);
    EXPECT_EQ(answer.status, 500U);
    EXPECT_EQ(answer.detail, "Internal Server Error");
    EXPECT_EQ(NextWriteLines(table.whenGone.size()), table.whenGone);
    ExpectMembers(table, table.rows.front().members);
  }
  EXPECT_THAT(Heard(), testing::IsEmpty());
  EXPECT_THAT(NextSets(0), testing::IsEmpty());
}

}  // namespace
}  // namespace system_test
