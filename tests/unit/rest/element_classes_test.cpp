#include <gtest/gtest.h>

#include <memory>
#include <stdexcept>
#include <string>

#include "tests/unit/rest/application.h"

namespace rest_test {
namespace {

using namespace zuva::server::charging_management_core;
using zuva::server::factory_reset::ResetObject;

template <class T>
std::shared_ptr<T> Make() {
  return T::Make("name", ara::rest::Uuid::MakeV4(), {});
}

template <class Step>
std::string DomainErrorOf(Step&& step) {
  try {
    step();
  } catch (const std::domain_error& error) {
    return error.what();
  }
  return "none";
}

TEST(Setter, RefusesBeforeAnythingChanges) {
  const auto control = Make<ValueControlObject>();
  const auto version = control->ContentVersion();
  EXPECT_EQ(DomainErrorOf([&] { control->SetCurrentValue(3001); }), "Value out of range");
  EXPECT_EQ(DomainErrorOf([&] { control->SetCurrentValue(-1); }), "Value out of range");
  EXPECT_EQ(DomainErrorOf([&] { control->SetType("Popup"); }), "Unsupported type: Popup");
  EXPECT_EQ(DomainErrorOf([&] {
              const std::string words[] = {"off", "on"};
              control->SetWords("specialStateConfiguration", words);
            }),
            "Unsupported type: on");
  EXPECT_EQ(control->ContentVersion(), version);
  EXPECT_THROW(control->SetWord("currentValue", "5"), std::logic_error);
  EXPECT_THROW(control->SetNumber("nonsense", 5), std::logic_error);
}

TEST(Setter, TellsTheDefaultValueOnceWhenItIsAdded) {
  const auto control = Make<ValueControlObject>();
  int told = 0;
  control->SetPostPropertyChangeCallback([&](const auto&, const std::string&) { ++told; });
  control->SetCurrentValue(0);
  EXPECT_GT(told, 0);
  told = 0;
  EXPECT_FALSE(control->SetCurrentValue(0));
  EXPECT_EQ(told, 0);
  EXPECT_TRUE(control->SetCurrentValue(3000));
  EXPECT_EQ(told, 1);
}

TEST(EmbeddedObject, IsShownAsItIsAtThatMoment) {
  const auto marker = Make<NotificationMarkerObject>();
  const auto soc = Make<ValueControlObject>();
  marker->SetNotificationSocValue(soc);
  const auto before = marker->ContentVersion();
  soc->SetCurrentValue(80);
  EXPECT_GT(marker->ContentVersion(), before);
  EXPECT_EQ(TreeOf(*marker)["notificationSocValue"]["currentValue"], 80);
  EXPECT_FALSE(TreeOf(*marker).contains("notificationRangeValue"));
  marker->RemoveField("notificationSocValue");
  EXPECT_FALSE(TreeOf(*marker).contains("notificationSocValue")) << "without the field the object is not shown";
  EXPECT_THROW(marker->Embed("notificationSocValue", nullptr), ara::rest::InvalidArgumentException);
}

TEST(ResetObjectDate, DecidesWhatTheFieldShows) {
  const auto reset = Make<ResetObject>();
  const zuva::format::DateTime first{2026, 11, 24, 10, 15, 30, 0, "+00:00"};
  reset->SetLastReset(first);
  EXPECT_FALSE(TreeOf(*reset).contains("lastReset"));
  reset->SetWord("lastReset", "yesterday");
  EXPECT_EQ(TreeOf(*reset)["lastReset"], "2026-11-24T10:15:30+00:00");
  const auto version = reset->ContentVersion();
  reset->SetLastReset(first);
  EXPECT_EQ(reset->ContentVersion(), version) << "the same date is no change";
  reset->SetLastReset({2027, 1, 1, 0, 0, 0, 0, "+00:00"});
  EXPECT_EQ(reset->GetWord("lastReset"), "2027-01-01T00:00:00+00:00") << "from the second date on the field follows by itself";
}

}  // namespace
}  // namespace rest_test
