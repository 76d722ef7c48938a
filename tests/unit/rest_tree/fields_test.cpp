#include <gtest/gtest.h>

#include <cmath>
#include <string>
#include <vector>

#include "tests/unit/rest_tree/tree_fixture.h"

namespace zuva::test {
namespace {

class Fields : public testing::Test {
 protected:
  Fields() {
    thing->SetPostPropertyChangeCallback([this](const auto& object, const std::string& name) {
      EXPECT_EQ(object, thing);
      told.push_back(name);
    });
  }

  Tree tree;
  std::shared_ptr<Thing> thing = tree.Add("one");
  std::vector<std::string> told;
};

TEST_F(Fields, AnEqualValueIsNoChange) {
  EXPECT_TRUE(thing->SetFieldValue<ogm::String>("type", "two", false));
  EXPECT_FALSE(thing->SetFieldValue<ogm::String>("type", "two", false));
  EXPECT_EQ(told, std::vector<std::string>{"type"});
  EXPECT_EQ(tree.sink->Count("changed"), 1U);
}

TEST_F(Fields, ForceTellsAnEqualValue) {
  thing->AddField<ogm::Int>("value");
  tree.sink->Take();
  told.clear();
  EXPECT_FALSE(thing->SetFieldValue<ogm::Int>("value", 0, true));
  EXPECT_EQ(told, std::vector<std::string>{"value"});
  EXPECT_EQ(tree.sink->Count("changed"), 1U);
}

TEST_F(Fields, AWriteAddsWhatIsMissing) {
  EXPECT_TRUE(thing->SetFieldValue<ogm::Bool>("flag", false, false));
  EXPECT_FALSE(thing->GetFieldValue<ogm::Bool>("flag"));
}

TEST_F(Fields, AddedOnesHaveTheDefaultOfTheirKindAndStayAsTheyAre) {
  thing->AddField<ogm::String>("s");
  thing->AddField<ogm::Real>("r");
  thing->AddField<ogm::Array>("a");
  thing->AddField<ogm::Object>("o");
  EXPECT_EQ(told.size(), 4U);
  EXPECT_TRUE(TextOf(*thing).ends_with(R"("s":"","r":0,"a":[],"o":{}})"));
  EXPECT_FALSE(thing->AddField<ogm::String>("type"));
  EXPECT_EQ(thing->GetFieldValue<ogm::String>("type"), "one");
}

TEST_F(Fields, RemovalIsTold) {
  EXPECT_TRUE(thing->RemoveField("type"));
  EXPECT_FALSE(thing->HasField("type"));
  EXPECT_FALSE(thing->RemoveField("type"));
  EXPECT_EQ(told, std::vector<std::string>{"type"});
  EXPECT_EQ(tree.sink->Count("changed"), 1U);
  EXPECT_THROW(thing->GetFieldValue<ogm::String>("type"), ara::rest::DataModelException);
}

TEST_F(Fields, NotANumberTwiceIsOneChange) {
  EXPECT_TRUE(thing->SetFieldValue<ogm::Real>("r", std::nan(""), false));
  EXPECT_FALSE(thing->SetFieldValue<ogm::Real>("r", std::nan(""), false));
}

TEST_F(Fields, ListsAndObjectsAreComparedWhole) {
  const auto words = [] {
    auto list = ara::rest::MakePointer<ogm::Array>();
    list->Append(ara::rest::MakePointer<ogm::String>("off"));
    return list;
  };
  EXPECT_TRUE(thing->SetFieldValue<ogm::Array>("list", words(), false));
  EXPECT_FALSE(thing->SetFieldValue<ogm::Array>("list", words(), false));
  EXPECT_TRUE((thing->SetFieldValue<ogm::Field, ogm::Object>("object", Json(R"({"a":1})"))));
  EXPECT_FALSE((thing->SetFieldValue<ogm::Field, ogm::Object>("object", Json(R"({"a":1})"))));
  EXPECT_EQ(thing->GetFieldValue<ogm::Array>("list")->GetValues().size(), 1U);
}

TEST_F(Fields, ThePreChangeCallbackSeesOldAndNew) {
  std::vector<std::string> seen;
  thing->SetPrePropertyChangeCallback([&](const auto& object, const ogm::Field& before, const ogm::Value& after) {
    seen.push_back(static_cast<const ogm::String&>(before.GetValue()).GetValue() + '>' + static_cast<const ogm::String&>(after).GetValue() +
                   ' ' + object->template GetFieldValue<ogm::String>("type"));
  });
  thing->SetFieldValue<ogm::String>("type", "two", false);
  thing->SetFieldValue<ogm::String>("missing", "x", false);
  EXPECT_EQ(seen, std::vector<std::string>{"one>two one"});
}

TEST_F(Fields, IdentityLeadsTheTree) {
  thing->SetName("renamed");
  const auto version = thing->ContentVersion();
  thing->SetUri(UriOf("/S/things/x"));
  EXPECT_GT(thing->ContentVersion(), version);
  EXPECT_EQ(TextOf(*thing), R"({"id":")" + thing->GetUuid().ToString() + R"(","name":"renamed","uri":"/S/things/x","type":"one"})");
}

TEST(FieldsWithoutOwner, CallNobody) {
  Thing thing{"/S/things/x", ara::rest::Uuid{}, "Thing"};
  thing.SetPostPropertyChangeCallback([](const auto&, const auto&) { ADD_FAILURE(); });
  EXPECT_TRUE(thing.SetFieldValue<ogm::String>("type", "one", true));
}

}  // namespace
}  // namespace zuva::test
