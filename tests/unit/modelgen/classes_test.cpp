#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "rest/generated/charging_management_core/charging_process_information.h"
#include "rest/generated/charging_management_core/notification_markers.h"
#include "rest/generated/charging_management_core/reset_to_factory_data.h"
#include "rest/generated/charging_management_core/value_controls.h"
#include "rest/generated/charging_management_core/views.h"
#include "rest/generated/factory_reset/resets.h"

namespace {

using namespace zuva::server::charging_management_core;
using zuva::server::ElementModel;
using zuva::server::Property;

std::vector<std::string_view> Writable(const ElementModel& model, Property::Post post) {
  std::vector<std::string_view> names;
  for (const auto& property : model.properties) {
    if (property.post == post) names.push_back(property.name);
  }
  return names;
}

TEST(ElementModels, TellWhatAClientMayOrMustPost) {
  EXPECT_THAT(Writable(ValueControlObject::kModel, Property::Post::yes), testing::ElementsAre("currentValue", "specialState"));
  EXPECT_THAT(Writable(ViewObject::kModel, Property::Post::yes), testing::ElementsAre("visibility"));
  EXPECT_THAT(Writable(ChargingProcessInformationObject::kModel, Property::Post::yes), testing::IsEmpty());
  EXPECT_THAT(Writable(zuva::server::factory_reset::ResetObject::kModel, Property::Post::required),
              testing::ElementsAre("isFactoryDefault"));
}

TEST(ElementModels, EqualVocabulariesAreOneList) {
  const auto* const state = ValueControlObject::kModel.Find("specialState");
  const auto* const configuration = ValueControlObject::kModel.Find("specialStateConfiguration");
  EXPECT_EQ(state->words.data(), configuration->words.data());
  EXPECT_EQ(configuration->kind, ara::rest::ogm::Kind::Array);
}

TEST(ElementModels, LimitsReachFarBeyondThirtyTwoBits) {
  EXPECT_TRUE(ResetToFactoryDataObject::kModel.Find("lastReset")->InRange(9.2e18));
  EXPECT_FALSE(ResetToFactoryDataObject::kModel.Find("elementId")->InRange(1));
}

TEST(GeneratedClasses, ResourcesHaveTheSameIdentifierAtEachStartAndElementsTheirUri) {
  EXPECT_EQ(ValueControls{}.GetUuid(), ara::rest::Uuid::MakeV5("/ChargingManagementCore/valueControls"));

  const auto uuid = ara::rest::Uuid::MakeV4();
  const auto made = ValueControls{}.MakeElement(uuid, {}, "ValueControlObject");
  EXPECT_EQ(made->GetUri().ToString(), "/ChargingManagementCore/valueControls/" + uuid.ToString());
  EXPECT_EQ(made->GetName(), "ValueControlObject");
}

TEST(GeneratedClasses, SettersTakeTheWordsAndLimitsOfTheirProperty) {
  const auto control = ValueControlObject::Make("ValueControlObject", ara::rest::Uuid::MakeV4(), {});
  EXPECT_TRUE(control->SetType("immediateChargingOptionsTargetSoc"));
  EXPECT_THROW(control->SetType("popup"), std::domain_error);
  EXPECT_TRUE(control->SetCurrentValue(3000));
  EXPECT_THROW(control->SetCurrentValue(3001), std::domain_error);
  EXPECT_THROW(control->SetCurrentValue(-1), std::domain_error);
  control->SetSpecialStateConfiguration({"off", "off"});
  EXPECT_THAT(control->GetSpecialStateConfiguration(), testing::ElementsAre("off", "off"));

  const auto marker = NotificationMarkerObject::Make("NotificationMarkerObject", ara::rest::Uuid::MakeV4(), {});
  marker->SetNotificationSocValue(control);
  EXPECT_EQ(marker->FindEmbedded("notificationSocValue"), control);
}

}  // namespace
