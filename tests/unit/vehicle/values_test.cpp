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

std::string Refusal(std::string_view field, const json& records) {
  try {
    CodecOf(field, Place{}).fromJson(records, Place{} / field);
    return "taken";
  } catch (const BadInput& refused) {
    return refused.what();
  }
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

TEST(VehicleValues, AWrongValueIsRefusedWithItsPlace) {
  EXPECT_EQ(Refusal("views", {{{"type", "popup"}}, {{"content", "popup"}}}), "/views/1/content: unknown word \"popup\"");
  EXPECT_EQ(Refusal("views", {{{"kind", "popup"}}}), "/views/0/kind: the record has no such member");
  EXPECT_EQ(Refusal("views", {{"type", "popup"}}), "/views: the value of a field is an array of records");
  EXPECT_EQ(Refusal("resetToFactoryData", {{{"elementId", 256}}}), "/resetToFactoryData/0/elementId: 256 is more than 255");
  EXPECT_THAT(Refusal("valueControls", {{{"currentValue", -1}}}), testing::StartsWith("/valueControls/0/currentValue: a whole number"));
  EXPECT_THAT(Refusal("switchControls", {{{"id", "0011"}}}), testing::StartsWith("/switchControls/0/id: a UUID"));
  EXPECT_THAT(Refusal("valueIndications", {{{"currentValue", 1e39}}}), testing::HasSubstr("does not fit"));
  EXPECT_THROW(CodecOf("viewz", Place{}), BadInput);
  EXPECT_THROW(BytesFromHex("0 f0", Place{}), BadInput);
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

TEST(VehicleValues, ASetOfAFieldWithoutTypesMeansItsOneRecord) {
  const auto& codec = CodecOf("resetToFactoryData", Place{});
  const auto held = codec.fromJson({{{"elementId", 1}, {"resetToFactoryData", "notOrigin"}, {"lastReset", 5}}}, Place{});
  const auto posted = codec.fromJson({{{"resetToFactoryData", "origin"}}}, Place{});
  const json expected = {{{"elementId", 1}, {"resetToFactoryData", "origin"}, {"lastReset", 5}}};
  EXPECT_EQ(codec.toJson(codec.merged(held, posted)), expected);
}

}  // namespace
}  // namespace vehicle
