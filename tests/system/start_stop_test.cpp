#include "tests/system/system_test.h"

#include <csignal>
#include <fstream>

namespace system_test {
namespace {

using test_support::ExitStatus;

const std::string kHandlerText = "sig_handler -> SIGABRT || SIGINT || SIGTERM ";
const std::string kStarted = "TROV version 1.10.10 has started!", kStopped = "TROV version 1.10.10 has stopped!";
const std::string kLastOfStart = "Completed start of SomeIP listeners...";

/// Whether the process has installed its handlers for all three stop signals.
bool CatchesStopSignals(pid_t pid) {
  std::ifstream status{"/proc/" + std::to_string(pid) + "/status"};
  for (std::string line; std::getline(status, line);) {
    if (!line.starts_with("SigCgt:")) continue;
    const auto caught = std::stoull(line.substr(7), nullptr, 16);
    const auto has = [&](int signal) { return (caught >> (signal - 1) & 1U) != 0; };
    return has(SIGINT) && has(SIGABRT) && has(SIGTERM);
  }
  return false;
}

class StartStop : public SystemTest {};

TEST_F(StartStop, WithoutAVehicleBothServicesAreAnnouncedAndEmptyOfValues) {
  bridge_.Start();
  const auto root = Http().Get("/");
  EXPECT_EQ(root.status, 200U);
  EXPECT_EQ(root.Json()["name"], "charging_management_core");
  EXPECT_EQ(root.Json()["services"].size(), 2U);
  EXPECT_EQ(Elements("views"), json::array());
}

enum class Moment { before, during, after };

struct StopCase {
  const char* name;
  int signal;
  Moment moment;
};

class StopSignals : public SystemTest, public testing::WithParamInterface<StopCase> {
 protected:
  bool WaitForTheMoment() {
    switch (GetParam().moment) {
      case Moment::before:
        return WaitFor([this] { return CatchesStopSignals(bridge_.Program().Pid()); });
      case Moment::during:
        return bridge_.Log().WaitForLine("Starting the server population...").has_value();
      case Moment::after:
        return bridge_.Log().WaitForLine(kLastOfStart).has_value();
    }
    return false;
  }
};

TEST_P(StopSignals, LetTheStartRunToItsEndAndThenStopInOrder) {
  StartVehicle();
  bridge_.Start();
  ASSERT_TRUE(WaitForTheMoment());
  EXPECT_EQ(bridge_.Stop(GetParam().signal), ExitStatus{});
  EXPECT_EQ(bridge_.StandardOutput(), kHandlerText);
  EXPECT_EQ(
      bridge_.Log().FirstMissing({kStarted, "Starting the server population...", "Registered preupdate callbacks...",
                                  "Removing zuva server service ResetToFactoryData...", "Starting ZuVa server...",
                                  "Starting SomeIP listeners...", "Find Service started...", "[CommMngr] Cmc and rbec listeners started",
                                  kLastOfStart, "Ended main block.", "[DataSync][DESTRUCTOR] Sync component ended normally.", kStopped}),
      "");
  EXPECT_EQ(bridge_.Log().Lines().back().text, kStopped);
  EXPECT_EQ(bridge_.Log().Count(kStarted), 1U);
}

INSTANTIATE_TEST_SUITE_P(
    All, StopSignals,
    testing::Values(StopCase{"InterruptBeforeStart", SIGINT, Moment::before}, StopCase{"InterruptDuringStart", SIGINT, Moment::during},
                    StopCase{"InterruptAfterStart", SIGINT, Moment::after}, StopCase{"AbortBeforeStart", SIGABRT, Moment::before},
                    StopCase{"AbortDuringStart", SIGABRT, Moment::during}, StopCase{"AbortAfterStart", SIGABRT, Moment::after},
                    StopCase{"TerminateBeforeStart", SIGTERM, Moment::before}, StopCase{"TerminateDuringStart", SIGTERM, Moment::during},
                    StopCase{"TerminateAfterStart", SIGTERM, Moment::after}),
    [](const auto& row) { return row.param.name; });

TEST_F(StartStop, ASecondSignalIsPrintedAgainAndChangesNothing) {
  bridge_.Start();
  ASSERT_TRUE(bridge_.Log().WaitForLine(kLastOfStart));
  bridge_.Program().Signal(SIGTERM);
  ASSERT_TRUE(WaitFor([this] { return bridge_.StandardOutput() == kHandlerText; }));
  EXPECT_EQ(bridge_.Stop(SIGINT), ExitStatus{});
  EXPECT_EQ(bridge_.StandardOutput(), kHandlerText + kHandlerText);
  EXPECT_EQ(bridge_.Log().Count("Ended main block."), 1U);
}

TEST_F(StartStop, TheServiceManagerHearsReadyAliveAndStopping) {
  bridge_.Start();
  const auto& manager = bridge_.Manager();
  ASSERT_TRUE(WaitFor([&] { return manager.Count("WATCHDOG=1") >= 6; }));
  EXPECT_EQ(manager.Count("STOPPING=1"), 0U);
  EXPECT_EQ(bridge_.Stop(), ExitStatus{});
  ASSERT_TRUE(WaitFor([&] { return manager.Count("STOPPING=1") == 1; }));

  std::vector<std::string> phases;
  std::vector<double> aliveGaps;
  std::optional<std::chrono::steady_clock::time_point> lastAlive;
  for (const auto& notice : manager.Notices()) {
    if (notice.text != "WATCHDOG=1") {
      phases.push_back(notice.text.substr(0, notice.text.find('=')));
      continue;
    }
    if (lastAlive) aliveGaps.push_back(Seconds{notice.time - *lastAlive}.count());
    lastAlive = notice.time;
  }
  EXPECT_THAT(phases, testing::ElementsAre("READY", "STATUS", "STATUS", "STATUS", "STATUS", "STATUS", "STATUS", "STOPPING", "STATUS"));
  std::sort(aliveGaps.begin(), aliveGaps.end());
  EXPECT_NEAR(aliveGaps[aliveGaps.size() / 2], 0.5, 0.2);
}

TEST_F(StartStop, ARunningSetAndAnOpenSocketDoNotHoldUpTheStop) {
  StartBoth();
  Fault("valueControls", {{"set", "silent"}});
  const auto element = WaitForElement("valueControls", "immediateChargingOptionsTargetSoc");
  ASSERT_TRUE(element);
  auto ws = bridge_.Ws();
  ws.Subscribe("/ChargingManagementCore");
  ws.Send({{"action", "set"}, {"path", (*element)["uri"]}, {"value", {{"currentValue", 50}}}, {"requestId", 1}});
  ASSERT_TRUE(vehicle_->WaitForEvent("set", "valueControls"));
  const auto start = std::chrono::steady_clock::now();
  EXPECT_EQ(bridge_.Stop(), ExitStatus{});
  EXPECT_LT(SecondsSince(start), 8.0);
  const auto answer = ws.WaitForEvent([](const json& m) { return m.value("requestId", json{}) == 1; });
  ASSERT_TRUE(answer);
  EXPECT_EQ((*answer)["error"]["number"], 500);
  EXPECT_EQ(ws.WaitForClose(), 1001U);
}

}  // namespace
}  // namespace system_test
