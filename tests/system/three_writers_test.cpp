#include "tests/system/crowd.h"
#include "tests/system/system_test.h"

#include <atomic>
#include <fstream>
#include <iostream>
#include <list>
#include <map>
#include <memory>
#include <thread>
#include <vector>

namespace system_test {
namespace {

/// Clients and the vehicle write the first one; the navigation, whose target is relayed to it, writes the second one too.
constexpr const char *kTarget = "immediateChargingOptionsTargetSoc", *kNavTarget = "immediateChargingOptionsNavTargetSoc";

const std::string kControls = "/ChargingManagementCore/valueControls";

/// Values that clients, the navigation and the vehicle write at the same time, as fast as they may.
class ThreeWriters : public SystemTest {
 protected:
  void SetUp() override {
    const auto file = root_.Path() / "scenario.json";
    std::ofstream{file} << json::object();  // a vehicle that sets no limits to the values
    StartVehicle(file.string());
    bridge_.Start();
    ASSERT_TRUE(vehicle_->WaitUntilSubscribed());
    std::vector<std::unique_ptr<CrowdClient>> followers;
    followers.push_back(std::make_unique<CrowdSubscriber>(bridge_, kControls));
    subscriber_ = dynamic_cast<CrowdSubscriber*>(followers.front().get());
    follower_.emplace(std::move(followers));
  }

  /// A client that writes until the end, and whose writes must all be taken.
  void WriteAsClient(const std::string& path, unsigned first, bool overWebSocket) {
    auto ws = bridge_.Ws();
    auto http = bridge_.Http();
    clients_.emplace_back([this, path, overWebSocket, first, ws = std::move(ws), http = std::move(http)]() mutable {
      for (unsigned time = 0; !stop_; ++time) {
        const json body{{"currentValue", first + time % 1000}};
        const auto status = overWebSocket ? ws.Ask({{"action", "set"}, {"path", path}, {"value", body}}).value("status", 0U)
                                          : http.Post(path, body.dump()).status;
        if (status != 200) ++refused_;
        ++written_;
        std::this_thread::sleep_for(kPause);
      }
    });
  }
  void StartClients() {
    for (const char* type : {kTarget, kNavTarget}) {
      const auto path = WaitForElement("valueControls", type)->value("uri", "");
      WriteAsClient(path, 0, false);
      WriteAsClient(path, 1000, true);
    }
  }
  void WriteAsNavigationAndVehicle(std::chrono::steady_clock::time_point end) {
    for (unsigned value = 0; std::chrono::steady_clock::now() < end; ++value) {
      Set("targetSocChargings", {{{"type", "targetSocCharging"}, {"targetSoc", value % 100}}});
      Set("valueControls",
          {{{"type", kTarget}, {"currentValue", 2000 + value % 1000}}, {{"type", kNavTarget}, {"currentValue", 2000 + value % 1000}}});
      std::this_thread::sleep_for(kPause);
    }
  }
  void StopClients() {
    stop_ = true;
    for (auto& client : clients_) client.join();
  }
  /// Waits until nothing has been relayed to the vehicle for a while.
  void WaitUntilQuiet() {
    auto seen = vehicle_->EventCount();
    while (vehicle_->WaitForEvent("set", "valueControls", seen, 300ms)) seen = vehicle_->EventCount();
  }

  /// The value in records as the vehicle tells them.
  static json ValueIn(const json& records, const char* type) {
    for (const auto& record : records)
      if (record.value("type", "") == type) return record.value("currentValue", json{});
    return {};
  }
  bool IsShown(const char* type, const json& value) {
    return WaitForElement("valueControls", type, {{"currentValue", value}}, 0ms).has_value();
  }
  void ExpectShown(const char* type, const json& value) {
    EXPECT_TRUE(WaitFor([&] { return IsShown(type, value); }, 2000ms)) << type << " " << value << " in " << Elements("valueControls");
  }
  /// Each event has followed from those before it, and in the end the subscriber holds what is shown.
  void ExpectTheSubscriberToHoldAll() {
    follower_->Stop();
    EXPECT_THAT(follower_->Faults(), testing::IsEmpty());
    std::map<std::string, json> shown;
    for (auto& element : Elements("valueControls")) shown[element["uri"]] = element;
    EXPECT_TRUE(WaitFor([&] {
      subscriber_->Turn();
      return subscriber_->Difference(shown).empty();
    })) << subscriber_->Difference(shown);
  }

  static constexpr std::chrono::milliseconds kPause{3};
  const std::chrono::milliseconds length_ = std::chrono::seconds{Setting("THREE_WRITERS_SECONDS", 3)};
  CrowdSubscriber* subscriber_ = nullptr;  // the follower's
  std::optional<CrowdThread> follower_;
  std::list<std::thread> clients_;
  std::atomic<bool> stop_ = false;
  std::atomic<unsigned> refused_ = 0, written_ = 0;
};

TEST_F(ThreeWriters, EndWithWhatTheVehicleHoldsAfterTheNextGets) {
  const auto end = std::chrono::steady_clock::now() + length_;
  StartClients();
  WriteAsNavigationAndVehicle(end);
  StopClients();
  WaitUntilQuiet();
  if (!kSanitized) {
    EXPECT_EQ(refused_, 0U) << "of " << written_;
  }

  // Two minutes lie between the cycles; without a longer run the first one is five seconds after the start.
  const auto before = vehicle_->EventCount();
  const auto got = vehicle_->WaitForEvent("get", "valueControls", before, 130s);
  ASSERT_TRUE(got) << "no gets";
  std::cout << written_ << " writes by clients; before the gets the objects were "
            << (IsShown(kTarget, ValueIn((*got)["value"], kTarget)) ? "as the vehicle has them\n" : "others than the vehicle's\n");
  ExpectShown(kTarget, ValueIn((*got)["value"], kTarget));

  // The gets relay the navigation's target to the vehicle once more, which then holds it.
  const auto relayed = vehicle_->WaitForEvent("set", "valueControls", before);
  ASSERT_TRUE(relayed) << "not relayed";
  ASSERT_FALSE(ValueIn((*relayed)["value"], kNavTarget).is_null()) << *relayed;
  ExpectShown(kNavTarget, ValueIn((*relayed)["value"], kNavTarget));
  ExpectTheSubscriberToHoldAll();
}

}  // namespace
}  // namespace system_test
