#include "tests/support/raw_socket.h"
#include "tests/system/system_test.h"

#include <csignal>
#include <fstream>

namespace system_test {
namespace {

using test_support::ExitStatus;
using test_support::RawSocket;

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

TEST_F(StartStop, ARunningSetIsAnsweredAndThenNothingHoldsTheStopUp) {
  StartBoth();
  Fault("valueControls", {{"set", "silent"}});
  const auto element = WaitForElement("valueControls", "immediateChargingOptionsTargetSoc");
  ASSERT_TRUE(element);
  auto ws = bridge_.Ws();
  ws.Subscribe("/ChargingManagementCore");
  ws.Send({{"action", "set"}, {"path", (*element)["uri"]}, {"value", {{"currentValue", 50}}}, {"requestId", 1}});
  ASSERT_TRUE(vehicle_->WaitForEvent("set", "valueControls"));
  const auto start = std::chrono::steady_clock::now();
  bridge_.Program().Signal(SIGTERM);
  const auto answer = ws.WaitForEvent([](const json& m) { return m.value("requestId", json{}) == 1; });
  ASSERT_TRUE(answer);
  EXPECT_EQ((*answer)["error"]["number"], 500);
  EXPECT_EQ(ws.WaitForClose(), 1001U);
  EXPECT_EQ(bridge_.Program().WaitForEnd(), ExitStatus{});
  EXPECT_LT(SecondsSince(start), 2.5) << "a second for the set, and half a second each until the stop is noticed and the supervision ends";
}

TEST_F(StartStop, AMuteVehicleAndClientsThatHangDelayTheStopByTwoSecondsAtMost) {
  StartBoth();
  Fault("valueControls", {{"set", "silent"}});
  const auto element = WaitForElement("valueControls", "immediateChargingOptionsTargetSoc");
  ASSERT_TRUE(element);
  const auto head =
      "POST " + element->value("uri", "") + " HTTP/1.1\r\nHost: localhost\r\nContent-Type: application/json\r\nContent-Length: ";
  const auto port = bridge_.Port();
  RawSocket idle{port}, half{port}, lazy{port, 4096}, hearing{port, 4096}, writing{port, 4096};
  half.Send(head + "19\r\n\r\n{");
  for (int i = 0; i < 2000; ++i) lazy.Send("GET /ChargingManagementCore/valueControls HTTP/1.1\r\nHost: localhost\r\n\r\n");
  hearing.Upgrade();
  hearing.Send(test_support::ClientFrame(0x81, R"({"action":"subscribe","path":"/ChargingManagementCore","requestId":"1"})"));
  for (int i = 0; i < 2000; ++i) writing.Send("GET /ChargingManagementCore/valueControls HTTP/1.1\r\nHost: localhost\r\n\r\n");
  auto ws = bridge_.Ws();
  ws.Send({{"action", "set"}, {"path", (*element)["uri"]}, {"value", {{"currentValue", 50}}}, {"requestId", 1}});
  ASSERT_TRUE(vehicle_->WaitForEvent("set", "valueControls"));
  bridge_.Program().Signal(SIGTERM);
  ASSERT_TRUE(bridge_.Log().WaitForLine("[Zuva][Zuva -> SomeIp] ValueControl Internal error"));
  const auto answered = std::chrono::steady_clock::now();
  ASSERT_TRUE(bridge_.Log().WaitForLine("Ended main block."));
  EXPECT_LT(SecondsSince(answered), 2.2);
  EXPECT_EQ(bridge_.Program().WaitForEnd(), ExitStatus{});
}

TEST_F(StartStop, AStopThatWaitsForTheVehicleIsSupervisedToItsEnd) {
  StartVehicle();
  for (const char* field : {"views", "notifications"})
    Fault(field, {{"get", "silent"}});  // which holds a round of gets up for two seconds each
  bridge_.Start();
  ASSERT_TRUE(vehicle_->WaitUntilSubscribed());
  const auto start = std::chrono::steady_clock::now();
  EXPECT_EQ(bridge_.Stop(), ExitStatus{});  // the round that is due is done all the same
  const auto end = std::chrono::steady_clock::now();
  ASSERT_GT(Seconds{end - start}.count(), 3.5) << "no slow stop";

  std::optional<std::chrono::steady_clock::time_point> stopping;
  auto alive = start;
  for (const auto& notice : bridge_.Manager().Notices()) {
    if (notice.text == "STOPPING=1" && !stopping) stopping = notice.time;
    if (notice.text != "WATCHDOG=1" || notice.time < start) continue;
    EXPECT_LT(Seconds{notice.time - alive}.count(), 1.0) << "the service manager would have ended the program";
    alive = notice.time;
  }
  EXPECT_LT(Seconds{end - alive}.count(), 1.0);
  ASSERT_TRUE(stopping);
  EXPECT_GT(Seconds{*stopping - start}.count(), 3.5) << "reported before all had ended";
}

}  // namespace
}  // namespace system_test
