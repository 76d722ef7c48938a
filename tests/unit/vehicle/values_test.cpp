#include "tools/vehicle/values/field_codec.h"

#include <gmock/gmock.h>
#include <nlohmann/json.hpp>

#include <string>

namespace vehicle {
namespace {

using nlohmann::json;

json ThroughTheWire(std::string_view field, const json& records) {
  const auto& codec = CodecOf(field, Place{});
  return codec.toJson(codec.fromJson(records, Place{}));
}

TEST(VehicleValues, EachKindOfMemberKeepsItsValueOverTheWire) {
  const json uuid = "00112233-4455-6677-8899-aabbccddeeff";
  const json reference = {{"idPart1", 1}, {"idPart2", 65535}, {"idPart3", 0}, {"uuid", uuid}};
  const std::pair<const char*, json> fields[] = {
      {"switchControls", {{{"type", "frontPlugLockState"}, {"id", uuid}, {"switchValueConfiguration", {"locked", 4711}}}}},
      {"valueIndications", {{{"currentValue", 12.5}, {"minValue", "nan"}, {"maxValue", "-inf"}, {"currentTimeDateValue", "\xff\x01"}}}},
      {"notificationMarkers", {{{"isToBeNotified", false}, {"notificationSocValue", reference}}, json::object()}},
      {"resetToFactoryData", {{{"elementId", 255}, {"lastReset", 18446744073709551615U}}}},
      {"views", {{{"type", 4294967295U}, {"content", "nothing"}}}},
      {"routeBasedResidualEnergy", json::array()}};
  for (const auto& [field, records] : fields) EXPECT_EQ(ThroughTheWire(field, records), records) << field;
}

TEST(VehicleValues, ASetChangesThePresentMembersOfTheRecordOfItsType) {
  const auto& codec = CodecOf("valueControls", Place{});
  const auto held = codec.fromJson({{{"type", "immediateChargingOptionsTargetSoc"}, {"currentValue", 40}, {"maxValue", 100}},
                                    {{"type", "immediateActionImmediateActionTime"}, {"currentValue", 7}}},
                                   Place{});
  const auto posted = codec.fromJson({{{"type", "immediateActionImmediateActionTime"}, {"specialState", "off"}},
                                      {{"type", "bidirectionalChargingModesMinSoc"}, {"currentValue", 20}}},
                                     Place{});
  const json expected = {{{"type", "immediateChargingOptionsTargetSoc"}, {"currentValue", 40}, {"maxValue", 100}},
                         {{"type", "immediateActionImmediateActionTime"}, {"currentValue", 7}, {"specialState", "off"}},
                         {{"type", "bidirectionalChargingModesMinSoc"}, {"currentValue", 20}}};
  EXPECT_EQ(codec.toJson(codec.merged(held, posted)), expected);
}

}  // namespace
}  // namespace vehicle
