#include <gtest/gtest.h>

#include <memory>
#include <ostream>
#include <stdexcept>
#include <string>

#include "ara/rest/serialize/json_serializer.h"
#include "tests/unit/rest/application.h"

namespace rest_test {
namespace {

using namespace zuva::server::charging_management_core;
using zuva::server::factory_reset::ResetObject;

template <class T>
std::shared_ptr<T> Make() {
  return T::Make("name", ara::rest::Uuid::MakeV4(), {});
}

struct Posting {
  const char* name;
  const zuva::server::ElementModel& model;
  const char* body;
  int code = 200;
  const char* text = "";

  friend void PrintTo(const Posting& row, std::ostream* out) { *out << row.body; }
};

constexpr const char* kForeign = "Conflict: not allowed parameter(s) included";
constexpr const char* kMissing = "Conflict: required parameter(s) missing";
constexpr const char* kBad = "Bad Message";
constexpr const char* kRange = "Bad Request: value not in allowed range";

const Posting kPostings[] = {
    {"EmptyObjectPasses", ViewObject::kModel, R"({})"},
    {"IdPassesUnlookedAt", ValueControlObject::kModel, R"({"id":7})"},
    {"ReadOnlyPropertyIsForeign", ValueControlObject::kModel, R"({"maxValue":5})", 409, kForeign},
    {"LimitPasses", ValueControlObject::kModel, R"({"currentValue":3000})"},
    {"AboveTheLimit", ValueControlObject::kModel, R"({"currentValue":3001})", 400, kRange},
    {"Negative", ValueControlObject::kModel, R"({"currentValue":-1})", 400, kRange},
    {"RealForInteger", ValueControlObject::kModel, R"({"currentValue":5.5})", 400, kBad},
    {"NullForNumber", ValueControlObject::kModel, R"({"currentValue":null})", 400, kBad},
    {"SpecialState", ValueControlObject::kModel, R"({"specialState":"off"})"},
    {"FirstFaultIsTheValue", ValueControlObject::kModel, R"({"currentValue":3001,"nonsense":1})", 400, kRange},
    {"FirstFaultIsTheName", ValueControlObject::kModel, R"({"nonsense":1,"currentValue":"5"})", 409, kForeign},
    {"SwitchWordMisspelt", SwitchControlObject::kModel, R"({"switchValue":"chargingImmedieateActionTime"})"},
    {"SwitchWordUnknown", SwitchControlObject::kModel, R"({"switchValue":"chargingImmediateActionTime"})", 400, kRange},
    {"ViewContentIsForeign", ViewObject::kModel, R"({"content":"nothing"})", 409, kForeign},
    {"PastErrorText", PastErrorInformationObject::kModel, R"({"confirmedByUser":"true"})", 400, kBad},
    {"ResetEmpty", ResetObject::kModel, R"({})", 409, kMissing},
    {"ResetMissingComesFirst", ResetObject::kModel, R"({"category":"wifi"})", 409, kMissing},
    {"ResetForeign", ResetObject::kModel, R"({"isFactoryDefault":true,"category":"wifi"})", 409, kForeign},
    {"ResetText", ResetObject::kModel, R"({"isFactoryDefault":"true"})", 400, kBad},
};

class PostedObject : public testing::TestWithParam<Posting> {};

TEST_P(PostedObject, IsCheckedAgainstTheModel) {
  const auto posted = ara::rest::serialize::JSONSerializer{}.Deserialize(GetParam().body);
  zuva::ServerReply reply;
  EXPECT_EQ(zuva::server::CheckPosted(GetParam().model, *posted, reply), GetParam().code == 200);
  ASSERT_EQ(reply.IsAnswered(), GetParam().code != 200);
  if (!reply.IsAnswered()) return;
  EXPECT_EQ(reply.GetAnswer()->code, GetParam().code);
  EXPECT_EQ(reply.GetAnswer()->text, GetParam().text);
}

INSTANTIATE_TEST_SUITE_P(Models, PostedObject, testing::ValuesIn(kPostings),
                         [](const testing::TestParamInfo<Posting>& row) { return row.param.name; });

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
