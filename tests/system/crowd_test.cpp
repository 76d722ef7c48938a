#include "tests/system/crowd.h"
#include "tests/support/get_probe.h"
#include "tests/support/raw_socket.h"
#include "tests/system/numbered_test.h"

#include <algorithm>
#include <iostream>
#include <list>
#include <memory>
#include <numeric>
#include <thread>

namespace system_test {
namespace {

using std::chrono::steady_clock;

/// What a client of this test takes at most: its socket, and what its own loop needs.
constexpr std::size_t kFilesEach = 5;
/// Longer than the program lets a client be that does not read, so that stalled ones have been dropped when others come for them.
constexpr auto kStalledFor = 65s;

/// Many clients of all kinds at once, while the vehicle comes and goes.
class Crowd : public NumberedTest {
 protected:
  void SetUp() override {
    const auto limit = test_support::RaiseFileLimit();
    if (limit < kFilesEach * clients_ + 300) GTEST_SKIP() << clients_ << " clients need more open files than the " << limit << " allowed";
    auto config = root_.DefaultRestConfig();
    config["limits"] = {{"connections", clients_ + 100}};
    root_.WriteRestConfig(config.dump());
    StartVehicle(WriteScenario(number_));
    StartBridge();
    ASSERT_TRUE(vehicle_->WaitUntilSubscribed());
    ASSERT_THAT(Unseen(number_, test_support::kPatience), testing::IsEmpty());
    for (const auto& value : NumberedValues(1)) paths_.push_back(value.resource);
    paths_.emplace_back("/ChargingManagementCore");
  }

  /// A tenth of the clients stalls, a tenth reads, a twentieth writes, all others subscribe.
  void Gather() {
    std::vector<std::vector<std::unique_ptr<CrowdClient>>> prompt(3);
    for (std::size_t number = 0; number < clients_ / 10 * 8 + clients_ / 20; ++number) {
      auto& few = prompt[number % prompt.size()];
      if (number % 8 == 7) {
        few.push_back(MakeReader(bridge_, number));
      } else {
        auto subscriber = std::make_unique<CrowdSubscriber>(bridge_, paths_[number % paths_.size()]);
        subscribers_.push_back(subscriber.get());
        few.push_back(std::move(subscriber));
      }
    }
    Stall();
    for (auto& few : prompt) prompt_.emplace_back(std::move(few));
    for (std::size_t number = 0; number < clients_ / 20; ++number) {
      std::vector<std::unique_ptr<CrowdClient>> one;
      one.push_back(MakeWriter(bridge_, number, statuses_.emplace_back()));
      writers_.emplace_back(std::move(one));
    }
  }
  /// Half of the stalled ones hear of everything, the others ask for more than the system's own buffers take.
  void Stall() {
    stalled_.clear();
    deaf_.clear();
    stalledSince_ = steady_clock::now();
    for (std::size_t number = 0; number < clients_ / 10; ++number) {
      if (number % 2 == 0) {
        deaf_.emplace_back(bridge_.Ws()).Subscribe("/ChargingManagementCore");
      } else {
        auto& socket = stalled_.emplace_back(bridge_.Port(), 4096);
        for (int i = 0; i < 100; ++i) socket.Send("GET /ChargingManagementCore/valueControls HTTP/1.1\r\nHost: localhost\r\n\r\n");
      }
    }
  }
  void RestartVehicle() {
    WriteScenario(++number_);
    if (number_ % 2 == 0) {
      vehicle_->Stop();
    } else {
      vehicle_->Kill();
    }
    vehicle_->Start();
  }
  /// Restarts the vehicle again and again, and gives the memory after a fifth of the time and at its end.
  std::pair<double, double> Live() {
    const auto began = steady_clock::now();
    const auto end = began + length_;
    const auto gap = std::min<std::chrono::milliseconds>(5s, length_ / 4);
    std::optional<double> warm;
    for (auto next = began + gap; next < end; next += gap) {
      std::this_thread::sleep_until(next);
      RestartVehicle();
      if (steady_clock::now() - stalledSince_ > kStalledFor) Stall();
      if (!warm && next - began > length_ / 5) warm = Memory();
    }
    std::this_thread::sleep_until(end);
    return {warm.value(), Memory()};
  }
  double Memory() { return test_support::ResidentMegabytes(bridge_.Program().Pid()); }

  void StopAll(std::list<CrowdThread>& threads) {
    for (auto& thread : threads) thread.Stop();
    for (const auto& thread : threads) EXPECT_THAT(thread.Faults(), testing::IsEmpty());
  }
  /// All that can be asked for, by its path.
  std::map<std::string, json> Shown() {
    std::map<std::string, json> shown;
    for (const char* service : {"/ChargingManagementCore", "/FactoryReset"}) {
      const auto identity = Http().Get(service).Json();
      for (const auto& resource : identity["resources"])
        for (auto& element : Http().Get(resource["uri"].get<std::string>()).Json()) shown[element["uri"]] = element;
    }
    return shown;
  }
  /// What has reached the subscribers in the end is what is shown.
  void ExpectAllToHoldWhatIsShown() {
    const auto shown = Shown();
    for (auto* subscriber : subscribers_) {
      const auto holdsAll = [&] {
        subscriber->Turn();
        return subscriber->Difference(shown).empty();
      };
      EXPECT_TRUE(WaitFor(holdsAll, HasFailure() ? 0ms : test_support::kPatience)) << subscriber->Difference(shown);
    }
  }
  void Scatter() {
    subscribers_.clear();
    prompt_.clear();
    writers_.clear();
    deaf_.clear();
    stalled_.clear();
  }

  const std::size_t clients_ = Setting("CROWD_CLIENTS", 60);
  const std::chrono::milliseconds length_ = std::chrono::seconds{Setting("CROWD_SECONDS", 5)};
  unsigned number_ = 1;
  std::vector<std::string> paths_;
  std::list<std::map<unsigned, std::size_t>> statuses_;
  std::list<CrowdThread> prompt_, writers_;
  std::vector<CrowdSubscriber*> subscribers_;
  std::list<test_support::WsClient> deaf_;
  std::list<test_support::RawSocket> stalled_;
  steady_clock::time_point stalledSince_;
};

double P99(const std::vector<double>& sorted) {
  return sorted[sorted.size() * 99 / 100];
}

TEST_F(Crowd, IsServedWhileTheVehicleComesAndGoes) {
  const auto pid = bridge_.Program().Pid();
  const auto files = test_support::OpenFiles(pid), threads = test_support::Threads(pid);
  const std::string asked = "/ChargingManagementCore/valueIndications";
  auto probe = std::make_unique<test_support::GetProbe>(bridge_, asked);
  std::this_thread::sleep_for(length_ / 10);
  const auto before = P99(probe->Stop());

  Gather();
  probe = std::make_unique<test_support::GetProbe>(bridge_, asked);
  const auto [warm, end] = Live();
  const auto times = probe->Stop();
  probe.reset();
  StopAll(writers_);
  StopAll(prompt_);
  ExpectAllToHoldWhatIsShown();

  std::map<unsigned, std::size_t> statuses;
  for (const auto& of : statuses_)
    for (const auto& [status, count] : of) statuses[status] += count;
  std::cout << clients_ << " clients, " << number_ - 1 << " restarts; " << times.size() << " GETs: 99 % within " << P99(times)
            << " ms, without the crowd " << before << " ms, the longest " << times.back() << " ms; writes by status: " << json(statuses)
            << "; memory " << warm << " MB after a fifth, " << end << " MB at the end\n";
  EXPECT_LT(times.back(), 60'000) << "a GET was not answered";
  const auto written =
      std::accumulate(statuses.begin(), statuses.end(), std::size_t{0}, [](auto sum, const auto& s) { return sum + s.second; });
  EXPECT_GT(2 * (statuses[200] + statuses[202]), written) << "most writes come while a vehicle is there";
  if (!kSanitized) {
    EXPECT_LT(P99(times), 3 * before + 20) << "the others wait for the crowd";
    EXPECT_LT(end - warm, 6.0) << "something of each time stays";
  }

  Scatter();
  EXPECT_TRUE(WaitFor([&] { return test_support::OpenFiles(pid) <= files; })) << test_support::OpenFiles(pid) << " after " << files;
  EXPECT_EQ(test_support::Threads(pid), threads);
}

}  // namespace
}  // namespace system_test
