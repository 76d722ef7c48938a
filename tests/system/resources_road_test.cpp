#include "tests/system/rows.h"
#include "tests/system/system_test.h"

#include <algorithm>
#include <fstream>
#include <map>
#include <set>
#include <vector>

namespace system_test {
namespace {

/// The rule of Europe/Berlin, known to a machine without zone files too.
const std::string kBerlin = "CET-1CEST,M3.5.0,M10.5.0/3";

const std::vector<ResourceRow> kRows = ResourceRows();
const std::vector<RoadTexts> kRoadTexts = AllRoadTexts();

/// The lines of a row on one of the two roads.
Lines LinesOf(const ResourceRow& row, const std::string& noType) {
  Lines lines = row.lines;
  if (noType.empty()) {
    std::erase(lines, kNoType);
  } else {
    std::replace(lines.begin(), lines.end(), kNoType, noType);
  }
  return lines;
}

Lines NotifiedLines(const ResourceRow& row) {
  const auto texts = std::find_if(kRoadTexts.begin(), kRoadTexts.end(), [&](const auto& t) { return row.field == t.field; });
  Lines lines{texts->received, texts->count + "1elements in the CachedSamples..."};
  if (!row.notified.empty()) lines.push_back(row.notified);
  const auto rest = LinesOf(row, texts->noType);
  lines.insert(lines.end(), rest.begin(), rest.end());
  return lines;
}

/// The lines of one cycle of gets in which each field has the records of all its rows.
Lines AskedLines(const json& values) {
  Lines lines{"[SomeIp][SomeIpGET -> Zuva] Entered fetch here...", "[SomeIp][SomeIpGET -> Zuva] Getting data from the someip server..."};
  for (const auto& texts : kRoadTexts) {
    lines.push_back("[SomeIp][SomeIpGET -> Zuva] There are " + std::to_string(values[texts.field].size()) + " elements in the " +
                    texts.asked + " Get vector...");
    for (const auto& row : kRows) {
      if (row.field != texts.field) continue;
      const auto more = LinesOf(row, texts.noTypeAsked);
      lines.insert(lines.end(), more.begin(), more.end());
    }
  }
  return lines;
}

/// Where the lines part, in words; empty if they are the same.
std::string Difference(const Lines& lines, const Lines& expected) {
  const auto [line, wanted] = std::mismatch(lines.begin(), lines.end(), expected.begin(), expected.end());
  const auto text = [](const Lines& list, auto at) { return at == list.end() ? "the end" : '"' + *at + '"'; };
  return line == lines.end() && wanted == expected.end() ? "" : text(lines, line) + " in place of " + text(expected, wanted);
}

json FaultOfAllFields(const json& fault) {
  json faults{{"targetSocChargings", fault}};
  for (const auto& texts : kRoadTexts) faults[texts.field] = fault;
  return faults;
}

class Roads : public SystemTest {
 protected:
  /// Starts both, the vehicle with a scenario of the test's own.
  void Play(const json& scenario) {
    const auto file = root_.Path() / "scenario.json";
    std::ofstream{file} << scenario;
    StartVehicle(file.string());
    bridge_.Start({{"TZ", kBerlin}});
  }
  /// The texts of what these contexts have logged, all of it at info.
  Lines Logged(const std::set<std::string>& contexts) {
    Lines lines;
    for (const auto& line : bridge_.Log().Lines()) {
      if (!contexts.contains(line.context)) continue;
      EXPECT_EQ(line.level, "INFO") << line.raw;
      lines.push_back(line.text);
    }
    return lines;
  }
  /// What notifications have logged so far.
  Lines Told() {
    auto lines = Logged({"TROV"});
    std::erase_if(lines, [](const std::string& line) { return line.find("SomeIpGET") != std::string::npos; });
    return lines;
  }

  /// What clients see of the row's object, in the form of the row.
  json Seen(const ResourceRow& row) {
    const auto elements = !row.type.empty() ? Elements(row.field) : Http().Get("/FactoryReset/resets").Json();
    for (const auto& element : elements) {
      if (element.value("type", "") != row.type) continue;
      auto members = json::object();
      for (const auto& [name, value] : element.items())
        if (name != "id" && name != "name" && name != "uri" && name != "type" && !value.is_object()) members[name] = value;
      return members;
    }
    return {};
  }
  void ExpectSeen(const ResourceRow& row) {
    EXPECT_TRUE(WaitFor([&] { return Seen(row) == row.members; }, Patience())) << row.name << " shows " << Seen(row);
  }
  /// A test that has failed hurries on to its other rows.
  static std::chrono::milliseconds Patience() { return HasFailure() ? 300ms : test_support::kPatience; }
};

TEST_F(Roads, EachNotificationIsToldInTheLogAndShownToClients) {
  Play({{"faults", FaultOfAllFields({{"get", {{"error", 1}}}})}});  // so that no get comes between
  ASSERT_TRUE(vehicle_->WaitUntilSubscribed());
  for (const auto& texts : kRoadTexts) {  // the present values, which have no records
    EXPECT_TRUE(bridge_.Log().WaitForLine(texts.count + "1elements in the CachedSamples...")) << texts.field;
  }
  auto known = Told().size();
  const auto told = [&] {
    const auto lines = Told();
    return Lines{lines.begin() + static_cast<std::ptrdiff_t>(std::min(known, lines.size())), lines.end()};
  };
  for (const auto& row : kRows) {
    const auto expected = NotifiedLines(row);
    Set(row.field.c_str(), row.records);
    WaitFor([&] { return told().size() >= expected.size(); }, Patience());
    EXPECT_EQ(Difference(told(), expected), "") << row.name << ", or a line too many of the row before";
    ExpectSeen(row);
    known = Told().size();
  }
}

TEST_F(Roads, WhatCannotBeSubscribedComesWithTheGets) {
  json values;
  std::map<std::pair<std::string, std::string>, ResourceRow> last;  // of each object
  for (const auto& row : kRows) {
    for (const auto& record : row.records) values[row.field].push_back(record);
    last.insert_or_assign({row.field, row.type}, row);
  }
  values["targetSocChargings"] = json::parse(R"([{"type": "targetSocCharging"}, {"type": "targetSocCharging", "targetSoc": 85}])");
  Play({{"values", values}, {"faults", FaultOfAllFields({{"subscribe", "nack"}})}});

  Lines expected{"SomeipSync initial wait before sync ended successfully: true",
                 "[DataSync] Secondary thread about to do get requests to someip..."};
  for (const auto& line : AskedLines(values)) expected.push_back(line);
  for (const char* line :
       {"[RBEC_Listener][SomeIpGET -> Zuva] Entered fetch here...",
        "[RBEC_Listener][SomeIpGET -> Zuva] Getting data from the someip server...",
        "[CommMngr][RBEC -> Zuva] Updating NavTargetSoc with value85", "[SomeIp] Received ValueControl object from RBEC",
        "[SomeIp] ValueControl type: 19. ValueControl value: 85. ValueControl specialState: 100000",
        "[SomeIp] Updating the someip field with values received from zuva...", "[SomeIp][Zuva -> Someip] ValueControl set call ended."})
    expected.emplace_back(line);
  ASSERT_TRUE(bridge_.Log().WaitForLine(expected.back(), 1, 20s));
  auto lines = Logged({"DSNC", "TROV", "RBECL"});
  lines.erase(lines.begin(), std::find(lines.begin(), lines.end(), expected.front()));
  EXPECT_EQ(Difference(lines, expected), "");
  for (const auto& [object, row] : last) ExpectSeen(row);
  EXPECT_TRUE(WaitForElement("valueControls", "immediateChargingOptionsNavTargetSoc", {{"currentValue", 85}}));
  EXPECT_FALSE(vehicle_->WaitForEvent("subscribed", "views", 0, 0ms));
}

TEST_F(Roads, TheNavigationsTargetIsShownAndRelayedToTheVehicle) {
  StartBoth();
  Set("targetSocChargings", json::parse(R"([{"targetSoc": 50}, {"type": 1, "targetSoc": 51}, {"type": "targetSocCharging"},
                                            {"type": "targetSocCharging", "targetSoc": 0}, {"type": "targetSocCharging", "targetSoc": 85}])"));
  const auto relayed = [&](int target) {
    const json record{{"type", "immediateChargingOptionsNavTargetSoc"}, {"currentValue", target}};
    return vehicle_->WaitForEvent([&](const json& e) { return e.value("event", "") == "set" && e["value"] == json::array({record}); });
  };
  EXPECT_TRUE(relayed(0)) << "presence decides, not the value";
  EXPECT_TRUE(relayed(85));
  const auto control = WaitForElement("valueControls", "immediateChargingOptionsNavTargetSoc", {{"currentValue", 85}});
  ASSERT_TRUE(control);
  EXPECT_TRUE(WaitForElement("immediateChargingOptions", "immediateChargingOption", {{"navTargetSoc", *control}}));
  const Lines expected{"[RBEC_Listener][SomeIp -> Zuva] Received notification regarding TargetSocChargings..",
                       "[RBEC_Listener][SomeIp -> Zuva] TargetSocChargings notification: There are 1elements in the CachedSamples...",
                       "[CommMngr][RBEC -> Zuva] Updating NavTargetSoc with value0",
                       "[SomeIp] ValueControl type: 19. ValueControl value: 0. ValueControl specialState: 100000",
                       "[CommMngr][RBEC -> Zuva] Updating NavTargetSoc with value85",
                       "[SomeIp] ValueControl type: 19. ValueControl value: 85. ValueControl specialState: 100000"};
  EXPECT_TRUE(bridge_.Log().WaitForLine(expected.back()));
  EXPECT_EQ(bridge_.Log().FirstMissing(expected), "");
  for (const char* other : {"50", "51"}) {
    EXPECT_EQ(bridge_.Log().Count(std::string{"[CommMngr][RBEC -> Zuva] Updating NavTargetSoc with value"} + other), 0U);
  }
}

TEST_F(Roads, ACompositeShowsWhatItEmbeds) {
  StartBoth();
  Set("valueControls", {{{"type", "notificationMarker1notificationSocValue"}, {"currentValue", 65}, {"unitPercent", "percent"}}});
  const auto control = WaitForElement("valueControls", "notificationMarker1notificationSocValue", {{"currentValue", 65}});
  ASSERT_TRUE(control);
  EXPECT_TRUE(WaitForElement("notificationMarkers", "notificationMarker1", {{"notificationSocValue", *control}}));

  Set("chargingPlugs", {{{"type", "frontLeft1"}, {"plugConnectionState", "connected"}}});
  Set("switchControls", {{{"type", "frontLeft1PlugLockState"}, {"switchValue", "locking"}}});
  const auto lock = WaitForElement("switchControls", "frontLeft1PlugLockState", {{"switchValue", "locking"}});
  ASSERT_TRUE(lock);
  EXPECT_TRUE(WaitForElement("chargingPlugs", "frontLeft1", {{"plugLockState", *lock}})) << Elements("chargingPlugs").dump(1);
}

TEST_F(Roads, ASessionCanBeFollowedToItsEnd) {
  vehicle_.emplace(root_, "default", 120);
  bridge_.Start();
  auto ws = bridge_.Ws();
  ws.Subscribe("/ChargingManagementCore");
  const auto process = "/ChargingManagementCore/chargingProcessInformation";
  for (const char* state : {"chargingHvBattery", "chargepurposeReachedAndConservation", "discharging"}) {
    EXPECT_TRUE(WaitForEvent(ws, "changed", process, {{"currentChargeState", state}}, 40s)) << state;
  }
  EXPECT_FALSE(bridge_.Log().WaitForLine("out of range", 1, 0ms)) << "a good vehicle keeps the limits";
  // The session goes on; what the vehicle holds and what a client sees is the same all the time, but for what is on its way.
  const auto soc = Elements("valueIndications").at(0);
  EXPECT_EQ(soc["type"], "chargingProcessInformationCurrentSoc");
  EXPECT_GT(soc.value("currentValue", 0.0), 70);
}

}  // namespace
}  // namespace system_test
