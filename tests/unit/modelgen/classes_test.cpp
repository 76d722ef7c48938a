#include <gtest/gtest.h>

#include "rest/generated/charging_management_core/reset_to_factory_data.h"
#include "rest/generated/charging_management_core/value_controls.h"

namespace {

using namespace zuva::server::charging_management_core;

TEST(GeneratedClasses, LimitsReachFarBeyondThirtyTwoBits) {
  EXPECT_TRUE(ResetToFactoryDataObject::kModel.Find("lastReset")->InRange(9.2e18));
  EXPECT_FALSE(ResetToFactoryDataObject::kModel.Find("elementId")->InRange(1));
}

TEST(GeneratedClasses, ResourcesHaveTheSameIdentifierAtEachStart) {
  EXPECT_EQ(ValueControls{}.GetUuid().ToString(), "fefe5113-358d-5e99-a2be-6df37ee8826f");
}

}  // namespace
