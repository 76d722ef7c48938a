#include "tools/vehicle/scenario/scenario.h"

#include <gmock/gmock.h>

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
    testing::Values(WrongScenario{"NoJson", "{\n \"steps\": [}", "line 2, column 12"},
                    WrongScenario{"UnknownMember", R"({"step": []})", "/step: unknown"},
                    WrongScenario{"TimeFalls", R"({"steps": [{"at": 2, "breakTcp": true}, {"at": 1, "quit": true}]})",
                                  "/steps/1/at: earlier"},
                    WrongScenario{"UnknownAction", R"({"steps": [{"at": 1, "explode": true}]})", "/steps/0/explode: unknown action"},
                    WrongScenario{"ValueInDepth", R"({"steps": [{"at": 1, "set": {"views": [{"type": "pop"}]}}]})",
                                  "/steps/0/set/views/0/type: unknown word"},
                    WrongScenario{"UnknownFault", R"({"faults": {"views": {"set": "mute"}}})", "/faults/views/set: \"ok\", \"silent\""},
                    WrongScenario{"RoundTooShort", R"({"steps": [{"at": 5, "quit": true}], "repeatEvery": 4})", "/repeatEvery: shorter"}),
    [](const auto& row) { return row.param.name; });

TEST(Scenarios, AllBuiltInOnesAreInOrder) {
  ASSERT_FALSE(BuiltInScenarios().empty());
  for (const auto& scenario : BuiltInScenarios()) EXPECT_NO_THROW(LoadScenario(std::string{scenario.name})) << scenario.name;
}

}  // namespace
}  // namespace vehicle
