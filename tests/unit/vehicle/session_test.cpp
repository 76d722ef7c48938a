#include "tools/vehicle/session/charging_session.h"

#include "tools/vehicle/values/field_codec.h"

#include <gmock/gmock.h>

#include <string>

namespace vehicle {
namespace {

using nlohmann::json;
using testing::Lt;

class ChargingSessionTest : public testing::Test {
 protected:
  using Seconds = ChargingSession::Seconds;

  /// The next tick. All that it says must be words of the vehicle's fields.
  void Tick(Seconds time) {
    const auto words = session.Advance(time);
    for (const auto& [field, records] : words.items()) {
      EXPECT_NO_THROW(CodecOf(field, Place{}).fromJson(records, Place{} / field));
      for (const auto& record : records) shown[field][std::string{record["type"]}].update(record);
    }
  }
  bool TickUntilState(const std::string& state) {
    for (int i = 0; i < 5000; ++i) {
      if (shown["chargingProcessInformation"]["chargingProcessInformation"]["currentChargeState"] == state) return true;
      Tick(Seconds{5});
    }
    return false;
  }
  double Indicated(const std::string& type) { return shown["valueIndications"][type]["currentValue"]; }

  ChargingSession session{{.startSoc = 14, .targetSoc = 80, .power = 150, .ambient = 7, .dc = true}};
  json shown = json::object();
};

TEST_F(ChargingSessionTest, ChargesToTheTargetWithLessAndLessPower) {
  ASSERT_TRUE(TickUntilState("chargingHvBattery"));
  for (int i = 0; i < 12; ++i) Tick(Seconds{5});
  const auto minutes = Indicated("chargingProcessInformationRemainingChargeTimeComplete");
  const auto power = Indicated("chargingProcessInformationChargePower");
  double took = 0;
  for (; Indicated("chargingProcessInformationCurrentSoc") < 79.5 && took < 10'000; took += 5) Tick(Seconds{5});
  EXPECT_NEAR(took / 60, minutes, 2) << "the remaining time was the truth";
  EXPECT_THAT(Indicated("chargingProcessInformationChargePower"), Lt(power));
  ASSERT_TRUE(TickUntilState("chargepurposeReachedAndConservation"));
  EXPECT_NEAR(Indicated("chargingProcessInformationChargeEnergy"), 0.66 * Battery::kCapacity, 2);
}

}  // namespace
}  // namespace vehicle
