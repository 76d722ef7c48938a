#include "tests/system/numbered_test.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <cerrno>
#include <csignal>
#include <cstring>
#include <initializer_list>
#include <iostream>
#include <map>
#include <mutex>
#include <thread>
#include <vector>

namespace system_test {
namespace {

using test_support::Bridge;
using test_support::ExitStatus;
using test_support::HttpClient;

constexpr unsigned kAtATime = 6;  // sessions, which wait most of their time

/// From where calls are counted: the start of the process, or the moment in which it has started and meets the vehicle.
enum class From { start, meeting };

/// Calls of the program that fail: the `at`-th of a name, and as many behind it.
struct Fault {
  std::string call;
  From from;
  unsigned at;
  unsigned times = 1;
  int error = ENOMEM;
};

std::ostream& operator<<(std::ostream& out, const Fault& fault) {
  return out << fault.call << " " << fault.at << (fault.from == From::start ? " of the start" : "") << " (" << fault.times << " times, "
             << std::strerror(fault.error) << ")";
}

/// A session of its own with vehicle, program and clients, in which calls of the program fail.
class Session {
 public:
  explicit Session(const Fault& fault) : fault_{fault} {}

  /// What is wrong with the program after it; empty if nothing is.
  std::string Play() try {
    Launch();
    if (!WaitFor([this] { return Logged("Completed start of") || Logged("Failed to start server:") || !IsRunning(); }, 20s))
      return "neither starts nor ends";
    if (!Logged("Listening on ") && WaitFor([this] { return !IsRunning(); }, Logged("Failed to start server:") ? 300ms : 0ms))
      return WrongEnd();
    if (Logged("Failed to start server:")) return Stop();  // up until it is stopped, whatever part of the start was reached
    if (fault_.from == From::meeting) {
      bridge_.Program().Signal(SIGUSR1);
      if (!WaitFor([this] { return Told("counting from"); })) return "does not count";
    }
    vehicle_.emplace(root_);
    std::string wrong;
    if (!WaitFor([&] { return (wrong = Use()).empty() || !IsRunning(); }, 12s) || !wrong.empty()) return IsRunning() ? wrong : Ended();
    return Stop();
  } catch (const std::exception& error) {
    return error.what();
  }

  bool HasFailed() const { return Told("failing call"); }
  std::string StandardError() const { return bridge_.StandardError(); }
  void Keep() { root_.Keep(); }

 private:
  void Launch() {
    std::map<std::string, std::optional<std::string>> environment{
        {"LD_PRELOAD", test_support::ProgramBesideThisTest("libfault_injection.so").string()},
        {"FAULT_CALL", fault_.call},
        {"FAULT_AT", std::to_string(fault_.at)},
        {"FAULT_TIMES", std::to_string(fault_.times)},
        {"FAULT_ERRNO", std::to_string(fault_.error)}};
    if (fault_.from == From::meeting) environment["FAULT_WAITS"] = "";
    bridge_.Start(environment);
  }
  bool Told(std::string_view text) const { return bridge_.StandardError().find(text) != std::string::npos; }
  bool IsRunning() { return bridge_.Program().IsRunning(); }
  bool Logged(std::string_view text) { return bridge_.Log().WaitForLine(text, 1, 0ms).has_value(); }
  /// At its start it may end, with one fatal line; before that there may be no log yet.
  std::string WrongEnd() {
    const auto& lines = bridge_.Log().Lines();
    const auto fatal = std::count_if(lines.begin(), lines.end(), [](const auto& line) { return line.level == "FATAL"; });
    if (fatal == 1 || (lines.empty() && Told("terminate called after throwing"))) return "";
    return "ended at its start with " + std::to_string(fatal) + " fatal lines";
  }

  /// Does with fresh clients all that clients do, and tells what does not work.
  std::string Use() try {
    if (!IsRunning()) return Ended();
    HttpClient http{"127.0.0.1", bridge_.Port(), 3s};
    const auto controls = http.Get("/ChargingManagementCore/valueControls?type=immediateChargingOptionsTargetSoc");
    if (controls.status != 200) return "GET: " + std::to_string(controls.status);
    const auto path = controls.Json().at(0).value("uri", "");
    if (const auto status = http.Post(path, R"({"currentValue": 55})").status; status != 200) return "POST: " + std::to_string(status);
    return Unheard();
  } catch (const std::exception& error) {
    return error.what();
  }
  /// Has the vehicle notify all its fields; the first of them that a fresh subscriber does not hear of.
  std::string Unheard() {
    test_support::Mirror mirror{bridge_.Ws()};
    for (const char* service : {"/ChargingManagementCore", "/FactoryReset"}) mirror.Subscribe(service);
    vehicle_->Command({{"set", NumberedScenario(++number_)["values"]}});
    auto unheard = NumberedValues(number_);
    WaitFor(
        [&] {
          mirror.CatchUp();
          std::erase_if(unheard, [&](const NumberedValue& value) { return IsMirrored(mirror, value); });
          return unheard.empty();
        },
        2s);
    return unheard.empty() ? "" : "deaf to " + unheard.front().field;
  }

  std::string Ended() { return (testing::Message() << "has ended: " << bridge_.Program().WaitForEnd().value()).GetString(); }
  std::string Stop() {
    bridge_.Program().Signal(SIGTERM);
    const auto end = bridge_.Program().WaitForEnd(10s);
    if (!end) return "does not stop";
    return *end == ExitStatus{} ? "" : Ended();
  }

  const Fault fault_;
  test_support::TempRoot root_;
  Bridge bridge_{root_};
  std::optional<test_support::VehicleProcess> vehicle_;
  unsigned number_ = 0;
};

/// After each fault the program serves as before. What failed may cost what it was for, and at the start the process.
class FaultInjection : public testing::Test {
 protected:
  void SetUp() override {
    if (kSanitized) GTEST_SKIP() << "the sanitizers put calls of their own before the library's";
  }

  void PlayAll(const std::vector<Fault>& faults) {
    std::atomic<std::size_t> next = 0, failed = 0;
    std::mutex mutex;  // guards what is printed
    const auto play = [&] {
      for (std::size_t i = next++; i < faults.size(); i = next++) {
        Session session{faults[i]};
        const auto wrong = session.Play();
        failed += session.HasFailed();
        if (wrong.empty()) continue;
        session.Keep();
        const std::lock_guard lock{mutex};
        ADD_FAILURE() << faults[i] << ": " << wrong << "\n" << session.StandardError();
      }
    };
    std::vector<std::thread> players;
    for (unsigned i = 0; i < kAtATime; ++i) players.emplace_back(play);
    for (auto& player : players) player.join();
    std::cout << failed << " of " << faults.size() << " faults came about\n";
    EXPECT_GT(failed, faults.size() / 4) << "the program makes fewer calls";
  }
};

/// Every `step`-th, or as FAULT_FIRST, FAULT_LAST and FAULT_STEP say.
std::vector<Fault> Allocations(From from, unsigned last, unsigned step) {
  step = Setting("FAULT_STEP", step);
  std::vector<Fault> faults;
  for (unsigned at = Setting("FAULT_FIRST", step / 2 + 1); at <= Setting("FAULT_LAST", last); at += step)
    faults.push_back({"allocation", from, at});
  return faults;
}

std::vector<Fault> Calls(From from, std::initializer_list<const char*> names, unsigned last) {
  constexpr std::array kErrors{ENOBUFS, EMFILE, ENOMEM};
  const auto finer = Setting("FAULT_STEP", 0);
  std::vector<Fault> faults;
  for (const char* name : names) {
    for (unsigned at = 1; at <= last; at += finer ? finer : 1 + at / 2) {
      const auto i = faults.size();
      faults.push_back({name, from, at, i % 2 ? 4U : 1U, kErrors[i % kErrors.size()]});
    }
  }
  return faults;
}

TEST_F(FaultInjection, AnAllocationThatFailsAtTheStart) {
  PlayAll(Allocations(From::start, 26'000, 1'300));
}

TEST_F(FaultInjection, AnAllocationThatFailsCostsNoMoreThanWhatItWasFor) {
  PlayAll(Allocations(From::meeting, 7'000, 47));
}

TEST_F(FaultInjection, ACallOfTheSystemThatFailsAtTheStart) {
  PlayAll(Calls(From::start, {"socket", "bind", "setsockopt", "epoll_ctl", "timerfd_create", "eventfd"}, 20));
}

TEST_F(FaultInjection, ACallOfTheSystemThatFailsIsGotOver) {
  PlayAll(Calls(
      From::meeting,
      {"socket", "bind", "connect", "accept", "setsockopt", "epoll_ctl", "send", "sendto", "sendmsg", "recv", "recvfrom", "recvmsg"}, 50));
}

}  // namespace
}  // namespace system_test
