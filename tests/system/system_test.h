#pragma once

#include "tests/support/bridge.h"
#include "tests/support/vehicle_process.h"
#include "tests/support/wait_for.h"

#include <gmock/gmock.h>
#include <nlohmann/json.hpp>

#include <chrono>
#include <cstdlib>
#include <optional>
#include <string>

namespace system_test {

using nlohmann::json;
using test_support::WaitFor;
using Seconds = std::chrono::duration<double>;
using namespace std::chrono_literals;

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
inline constexpr bool kSanitized = true;  // whose times and memory are not the product's
#else
inline constexpr bool kSanitized = false;
#endif

inline const std::string kViews = "/ChargingManagementCore/views";

/// A number from the environment, with which a test is made longer or bigger.
inline unsigned Setting(const char* name, unsigned otherwise) {
  const char* given = std::getenv(name);
  return given ? static_cast<unsigned>(std::strtoul(given, nullptr, 10)) : otherwise;
}

/// The records of the popup view as the vehicle tells it.
inline json Popup(const char* visibility) {
  return {{{"type", "popup"}, {"content", "chargingInformationScreen"}, {"visibility", visibility}}};
}

inline double SecondsSince(std::chrono::steady_clock::time_point start) {
  return Seconds{std::chrono::steady_clock::now() - start}.count();
}

/// The real program and, where a test starts one, the simulated vehicle. A test that ends with the program running stops it, and expects
/// the ordinary end.
class SystemTest : public testing::Test {
 protected:
  void StartVehicle(const std::string& scenario = "parked") { vehicle_.emplace(root_, scenario); }
  /// Starts both, and waits until the bridge has subscribed all that it reads.
  void StartBoth() {
    StartVehicle();
    bridge_.Start();
    http_.emplace(bridge_.Http());
    ASSERT_TRUE(vehicle_->WaitUntilSubscribed()) << "not all fields were subscribed";
  }
  void TearDown() override {
    if (bridge_.IsStarted() && bridge_.Program().IsRunning()) {
      EXPECT_EQ(bridge_.Stop(), test_support::ExitStatus{});
    }
    if (HasFailure()) root_.Keep();
  }

  test_support::HttpClient& Http() {
    if (!http_) http_.emplace(bridge_.Http());
    return *http_;
  }
  void Set(const char* field, const json& records) { vehicle_->Command({{"set", {{field, records}}}}); }
  void Fault(const char* field, const json& fault) { vehicle_->Command({{"fault", {{field, fault}}}}); }

  /// The elements of a resource.
  json Elements(const std::string& resource) { return Http().Get("/ChargingManagementCore/" + resource).Json(); }
  /// The element of this type once it is there and has these members.
  std::optional<json> WaitForElement(const std::string& resource, const std::string& type, const json& members = json::object(),
                                     std::chrono::milliseconds deadline = test_support::kPatience) {
    return WaitFor(
        [&]() -> std::optional<json> {
          for (auto& element : Elements(resource))
            if (element.value("type", "") == type && Has(element, members)) return element;
          return {};
        },
        deadline);
  }
  std::size_t AnnouncedServices() { return Http().Get("/").Json()["services"].size(); }

  static bool Has(const json& element, const json& members) {
    for (const auto& [name, value] : members.items())
      if (element.value(name, json{}) != value) return false;
    return true;
  }
  /// The next event of the kind under a path that begins like this.
  static std::optional<json> WaitForEvent(test_support::WsClient& ws, const std::string& event, const std::string& path,
                                          const json& members = {}, std::chrono::milliseconds deadline = test_support::kPatience) {
    return ws.WaitForEvent(
        [&](const json& message) {
          return message.value("event", "") == event && message.value("path", "").starts_with(path) &&
                 (members.is_null() || Has(message.value("data", json::object()), members));
        },
        deadline);
  }

  test_support::TempRoot root_;
  test_support::Bridge bridge_{root_};
  std::optional<test_support::VehicleProcess> vehicle_;
  std::optional<test_support::HttpClient> http_;
};

}  // namespace system_test
