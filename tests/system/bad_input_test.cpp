#include "tests/support/get_probe.h"
#include "tests/system/numbered_test.h"
#include "tools/vehicle/values/field_codec.h"

#include <iostream>
#include <limits>
#include <stdexcept>
#include <tuple>

namespace system_test {
namespace {

constexpr unsigned kFlood = 15'000;
constexpr const char *kTcp = "valueIndications", *kUdp = "batteryPreconditioningEnergies", *kText = "chargingProcessInformation";

/// The numbered value of a field.
NumberedValue ValueOf(const std::string& field, unsigned number = 1) {
  for (auto& value : NumberedValues(number))
    if (value.field == field) return value;
  throw std::invalid_argument{field};
}

json Telling(const std::string& field, const json& records) {
  return {{"set", {{field, records}}}};
}

json EmptyRecords(const std::string& field, std::size_t count) {
  return json::array({Telling(field, json(count, json::object()))});
}

/// Each field's record as it is, but with another type or without one.
json WithTypes(const json& type) {
  auto commands = json::array();
  for (auto& value : NumberedValues(2)) {
    if (value.type.empty()) continue;
    value.record.erase("type");
    if (!type.is_null()) value.record["type"] = type;
    commands.push_back(Telling(value.field, json::array({value.record, value.record})));
  }
  return commands;
}

/// What is held, but for one number that is beyond its limits.
json BeyondTheLimits() {
  constexpr auto kMost = std::numeric_limits<std::uint32_t>::max();
  const std::tuple<const char*, const char*, json> beyond[] = {{"valueControls", "currentValue", 3001},
                                                               {"valueControls", "minValue", kMost},
                                                               {"valueControls", "resolution", 0},
                                                               {"valueControls", "resolution", 101},
                                                               {"valueIndications", "currentValue", "inf"},
                                                               {"valueIndications", "currentValue", -1000000.5},
                                                               {"valueIndications", "minValue", 3.4e38},
                                                               {"batteryCareModes", "chargeBcamThreshold", 101},
                                                               {"batteryCareModes", "bcamScoreThreshold", -0.5},
                                                               {"batteryPreconditioningEnergies", "firstStop", 100'001},
                                                               {"bidirectionalChargingModes", "quotaThreshold", "inf"}};
  auto commands = json::array();
  for (const auto& [field, member, number] : beyond) {
    auto record = ValueOf(field).record;
    record[member] = number;
    commands.push_back(Telling(field, json::array({record})));
  }
  return commands;
}

/// Bytes that no UTF-8 has, and a character that is cut off. JSON cannot say them, so they go as a payload.
json NotUtf8() {
  auto record = ValueOf(kText).record;
  record["evseid"] = "DE*\xff\xc0\xe2\x82";
  std::string hex;
  for (const unsigned char byte : vehicle::CodecOf(kText, {}).fromJson(json::array({record}), {}))
    hex += {"0123456789abcdef"[byte >> 4U], "0123456789abcdef"[byte & 15U]};
  return json::array({{{"payload", {{kText, hex}}}}});
}

json Flood(const std::string& field, const std::string& counter) {
  const json pace{{"record", ValueOf(field).record}, {"counter", counter}, {"times", kFlood}, {"perSecond", 10'000}};
  return json::array({{{"repeat", {{field, pace}}}}});
}

json ManyChanges(std::size_t count) {
  auto record = ValueOf(kTcp).record;
  auto records = json::array();
  for (std::size_t i = 1; i <= count; ++i) {
    record["currentValue"] = i;
    records.push_back(record);
  }
  return json::array({Telling(kTcp, records)});
}

struct BadInput {
  const char* name;
  json commands;
  const char* field;  ///< which is told in order afterwards
  json shown;         ///< the members of its element before that; null where nothing at all may change
  unsigned times;     ///< that all of it is told
};

void PrintTo(const BadInput& row, std::ostream* out) {
  *out << row.name;
}

/// The newest good value is shown, and everybody is answered, whatever came before and comes meanwhile.
class BadInputs : public NumberedTest, public testing::WithParamInterface<BadInput> {
 protected:
  void SetUp() override {
    StartVehicle(WriteScenario(1));
    StartBridge();
    ASSERT_THAT(Unseen(1, test_support::kPatience), testing::IsEmpty());
    if (!GetParam().shown.is_null()) {
      // The answer to a get may be passed on behind a notification that is newer, so the first round of gets is let by.
      ASSERT_TRUE(bridge_.Log().WaitForLine("[RBEC_Listener][SomeIpGET -> Zuva] Getting data", 1, 30s));
    }
  }

  /// The vehicle says it all, and a good value of the same field behind it, which takes the same road and so comes last.
  void TellAllAndSomethingGood(unsigned number) {
    const auto& row = GetParam();
    const auto before = vehicle_->EventCount();
    for (const auto& command : row.commands) vehicle_->Command(command);
    const auto good = ValueOf(row.field, number);
    if (!row.shown.is_null()) {
      if (row.commands[0].contains("repeat")) {
        EXPECT_TRUE(vehicle_->WaitForEvent("repeated", row.field, before, 30s));
      }
      EXPECT_TRUE(WaitForElement(row.field, good.type, row.shown)) << Elements(row.field);
    }
    Set(row.field, json::array({good.record}));
    EXPECT_TRUE(WaitForElement(row.field, good.type, good.members)) << Elements(row.field);
    EXPECT_FALSE(vehicle_->WaitForEvent("refused", "", before, 0ms)) << "the vehicle could not say it";
  }

  double Memory() { return test_support::ResidentMegabytes(bridge_.Program().Pid()); }
};

TEST_P(BadInputs, AreSurvivedWhileEveryoneIsAnswered) {
  mirror_->CatchUp();
  const auto before = mirror_->Elements();
  test_support::GetProbe probe{bridge_, "/ChargingManagementCore/" + std::string{GetParam().field}};
  TellAllAndSomethingGood(GetParam().times);
  const auto memory = Memory();  // what a first time takes, it keeps: queues, the log's ring
  for (unsigned number = GetParam().times; number-- > 1;) TellAllAndSomethingGood(number);
  const auto times = probe.Stop();
  const auto grown = Memory() - memory;
  std::cout << times.size() << " GETs: median " << times[times.size() / 2] << " ms, 95 % within " << times[times.size() * 95 / 100]
            << " ms, the longest " << times.back() << " ms; memory " << memory << " MB and " << grown << " MB more\n";
  if (!kSanitized) {
    EXPECT_LT(times[times.size() / 2], 5.0);
    EXPECT_LT(times[times.size() * 95 / 100], 5.0);  // the rest may wait for an object whose writer has no CPU
    EXPECT_LT(grown, 6.0) << "something of each time stays";
  }
  EXPECT_LT(times.back(), 60'000) << "a GET was not answered";

  EXPECT_THAT(Unseen(1, test_support::kPatience), testing::IsEmpty());
  if (GetParam().shown.is_null()) {
    EXPECT_EQ(mirror_->Elements(), before);
  }
  const auto logged = bridge_.Log().Lines().size();
  Set("views", Popup("newRequest"));
  EXPECT_TRUE(WaitFor([&] { return bridge_.Log().Lines().size() > logged; })) << "the log has stopped";
}

INSTANTIATE_TEST_SUITE_P(
    All, BadInputs,
    testing::Values(BadInput{"EmptyRecordsOverTcp", EmptyRecords("valueControls", 10'000), "valueControls", {}, 6},
                    BadInput{"EmptyRecordsOverUdp", EmptyRecords(kUdp, 16'000), kUdp, {}, 6},
                    BadInput{"RecordsWithoutType", WithTypes({}), kTcp, {}, 40}, BadInput{"UnknownTypes", WithTypes(4711), kTcp, {}, 40},
                    BadInput{"NumbersBeyondTheirLimits", BeyondTheLimits(), kTcp, {}, 40},
                    BadInput{"TextThatIsNotUtf8", NotUtf8(), kText, {{"evseid", "DE*\ufffd\ufffd\ufffd\ufffd"}}, 40},
                    BadInput{"ThousandsOfChangesInOneSample", ManyChanges(2'500), kTcp, {{"currentValue", 2'500}}, 6},
                    BadInput{"ANotificationEach100MicrosecondsOverTcp", Flood(kTcp, "currentValue"), kTcp, {{"currentValue", kFlood}}, 2},
                    BadInput{"ANotificationEach100MicrosecondsOverUdp", Flood(kUdp, "firstStop"), kUdp, {{"firstStop", kFlood}}, 2}),
    [](const auto& row) { return row.param.name; });

}  // namespace
}  // namespace system_test
