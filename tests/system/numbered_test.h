#pragma once

#include "tests/support/mirror.h"
#include "tests/system/numbered_values.h"
#include "tests/system/system_test.h"

#include <algorithm>
#include <fstream>
#include <iterator>
#include <vector>

namespace system_test {

inline bool Shows(const json& element, const NumberedValue& value) {
  if (element.value("type", "") != value.type) return false;
  const auto& members = value.members.items();
  return std::all_of(members.begin(), members.end(),
                     [&](const auto& member) { return element.value(member.key(), json{}) == member.value(); });
}
/// Whether a subscriber holds the value.
inline bool IsMirrored(const test_support::Mirror& mirror, const NumberedValue& value) {
  const auto& all = mirror.Elements();
  return std::any_of(all.begin(), all.end(),
                     [&](const auto& entry) { return entry.first.starts_with(value.resource + "/") && Shows(entry.second, value); });
}

/// Vehicles with numbered values, which clients follow by GET and by subscription.
class NumberedTest : public SystemTest {
 protected:
  /// A scenario file with the values of this number.
  std::string WriteScenario(unsigned number, const std::string& name = "vehicle") {
    auto path = (root_.Path() / (name + ".json")).string();
    std::ofstream{path} << NumberedScenario(number);
    return path;
  }

  void StartBridge() {
    bridge_.Start();
    mirror_.emplace(bridge_.Ws());
    for (const char* service : {"/ChargingManagementCore", "/FactoryReset"}) mirror_->Subscribe(service);
  }

  /// The fields whose value of this number does not reach clients on both ways until the deadline; with a deadline of 0, now.
  std::vector<std::string> Unseen(unsigned number, std::chrono::milliseconds deadline) {
    auto unseen = NumberedValues(number);
    WaitFor(
        [&] {
          mirror_->CatchUp();
          std::erase_if(unseen, [this](const NumberedValue& value) {
            if (!IsMirrored(*mirror_, value) || !IsAnswered(value)) return false;
            lastSeen_ = value.field;
            return true;
          });
          return unseen.empty();
        },
        deadline);
    std::vector<std::string> names;
    std::transform(unseen.begin(), unseen.end(), std::back_inserter(names), [](const NumberedValue& value) { return value.field; });
    return names;
  }

  std::optional<test_support::Mirror> mirror_;
  std::string lastSeen_;  // the field for which Unseen has waited longest

 private:
  bool IsAnswered(const NumberedValue& value) {
    const auto elements = Http().Get(value.resource).Json();
    return std::any_of(elements.begin(), elements.end(), [&](const json& element) { return Shows(element, value); });
  }
};

}  // namespace system_test
