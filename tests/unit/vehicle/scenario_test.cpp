#include "tools/vehicle/scenario/scenario.h"
#include "tools/vehicle/command_line.h"
#include "tools/vehicle/scenario/player.h"

#include <gmock/gmock.h>
#include <boost/asio/io_context.hpp>

#include <string>

namespace vehicle {
namespace {

struct WrongScenario {
  const char* name;
  const char* text;
  const char* reason;
};

class WrongScenarios : public testing::TestWithParam<WrongScenario> {};

TEST_P(WrongScenarios, AreRefusedWithPlaceAndReason) {
  try {
    ParseScenario(GetParam().text);
    FAIL() << "taken";
  } catch (const BadInput& refused) {
    EXPECT_THAT(refused.what(), testing::HasSubstr(GetParam().reason));
  }
}

INSTANTIATE_TEST_SUITE_P(
    All, WrongScenarios,
    testing::Values(
        WrongScenario{"NoJson", "{\n \"steps\": [}", "line 2, column 12"},
        WrongScenario{"UnknownMember", R"({"step": []})", "/step: unknown"},
        WrongScenario{"NoTime", R"({"steps": [{"breakTcp": true}]})", "/steps/0: a step is an object of \"at\""},
        WrongScenario{"TimeFalls", R"({"steps": [{"at": 2, "breakTcp": true}, {"at": 1, "quit": true}]})", "/steps/1/at: earlier"},
        WrongScenario{"NegativeTime", R"({"steps": [{"at": -1, "breakTcp": true}]})", "/steps/0/at: seconds"},
        WrongScenario{"TwoActions", R"({"steps": [{"at": 1, "breakTcp": true, "quit": true}]})", "/steps/0: exactly one action"},
        WrongScenario{"UnknownAction", R"({"steps": [{"at": 1, "explode": true}]})", "/steps/0/explode: unknown action"},
        WrongScenario{"ValueInDepth", R"({"steps": [{"at": 1, "set": {"views": [{"type": "pop"}]}}]})",
                      "/steps/0/set/views/0/type: unknown word"},
        WrongScenario{"UnknownField", R"({"values": {"view": []}})", "/values/view: no such field"},
        WrongScenario{"UnknownService", R"({"steps": [{"at": 1, "offer": "Charging"}]})", "/steps/0/offer: no such service"},
        WrongScenario{"UnknownFault", R"({"faults": {"views": {"set": "mute"}}})", "/faults/views/set: \"ok\", \"silent\""},
        WrongScenario{"TwoAnswers", R"({"faults": {"views": {"get": {"error": 1, "payload": ""}}}})", "not both"},
        WrongScenario{"ErrorCodeTooBig", R"({"faults": {"views": {"get": {"error": 256}}}})",
                      "/faults/views/get/error: 256 is more than 255"},
        WrongScenario{"OddDigits", R"({"steps": [{"at": 1, "payload": {"views": "abc"}}]})", "/steps/0/payload/views: pairs"},
        WrongScenario{"RepetitionWithoutPace",
                      R"({"steps": [{"at": 1, "repeat": {"views": {"record": {}, "counter": "type", "times": 1}}}]})",
                      "/steps/0/repeat/views: record, counter, times and perSecond"},
        WrongScenario{"RepetitionOfNoMember",
                      R"({"steps": [{"at": 1, "repeat": {"views": {"record": {}, "counter": "count", "times": 1, "perSecond": 1}}}]})",
                      "/steps/0/repeat/views/record/0/count: the record has no such member"},
        WrongScenario{"RoundTooShort", R"({"steps": [{"at": 5, "quit": true}], "repeatEvery": 4})", "/repeatEvery: shorter"}),
    [](const auto& row) { return row.param.name; });

TEST(Scenarios, AllBuiltInOnesAreInOrder) {
  ASSERT_FALSE(BuiltInScenarios().empty());
  for (const auto& scenario : BuiltInScenarios()) EXPECT_NO_THROW(LoadScenario(std::string{scenario.name})) << scenario.name;
}

TEST(Scenarios, ARefusalNamesTheFile) {
  try {
    LoadScenario("/no/such/file.json");
    FAIL() << "taken";
  } catch (const BadInput& refused) {
    EXPECT_STREQ(refused.what(), "/no/such/file.json: cannot be read");
  }
}

TEST(Scenarios, ArePlayedInOrderRoundAfterRoundWithoutDrift) {
  const auto scenario = ParseScenario(R"({"steps": [{"at": 1, "stopOffer": true}, {"at": 2, "offer": true}], "repeatEvery": 3})");
  boost::asio::io_context context;
  std::string played;
  const auto start = std::chrono::steady_clock::now();
  Player player{context, scenario, 100, [&](const Action& action) {
                  played += std::holds_alternative<OfferServices>(action) ? '+' : '-';
                  if (played.size() == 6) context.stop();
                }};
  player.Start();
  context.run();
  EXPECT_EQ(played, "-+-+-+");
  EXPECT_GE(std::chrono::steady_clock::now() - start, std::chrono::milliseconds{80})
      << "the last step stands at 8 s, played a hundred times as fast";
}

TEST(CommandLine, TakesWhatThereIsAndNamesWhatThereIsNot) {
  const auto options = ParseCommandLine({"--address", "127.0.0.5", "--scenario", "parked", "--speed", "2.5", "--verbose"});
  EXPECT_EQ(options.address, "127.0.0.5");
  EXPECT_EQ(options.scenario, "parked");
  EXPECT_EQ(options.speed, 2.5);
  EXPECT_TRUE(options.verbose);
  EXPECT_FALSE(options.deployment);
  const std::vector<std::string> wrong[] = {{"--speed", "fast"}, {"--speed", "0"}, {"--speed", "nan"}, {"--scenario"}, {"--port", "1"}};
  for (const auto& arguments : wrong) EXPECT_THROW(ParseCommandLine(arguments), BadInput) << arguments[0];
}

}  // namespace
}  // namespace vehicle
