#include <gtest/gtest.h>

#include <cmath>
#include <functional>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "tests/unit/rest_tree/tree_fixture.h"
#include "zuva/transaction.h"

namespace zuva::test {
namespace {

using Names = std::vector<std::string>;

class Fields : public testing::Test {
 protected:
  Fields() {
    thing->SetPostPropertyChangeCallback([this](const auto& object, const std::string& name) {
      EXPECT_EQ(object, thing);
      told.push_back(name);
    });
  }
  /// The fields whose change was told since, to the object's owner and, as one event or none, to the clients.
  Names Told(std::size_t events = 1) {
    EXPECT_EQ(tree.sink->Take().size(), events);
    return std::exchange(told, {});
  }

  Tree tree;
  std::shared_ptr<Thing> thing = tree.Add("one");
  Names told;
};

TEST_F(Fields, TellAChangeAndNoWriteOfAnEqualValueUnlessForced) {
  const auto words = [] {
    auto list = ara::rest::MakePointer<ogm::Array>();
    list->Append(ara::rest::MakePointer<ogm::String>("off"));
    return list;
  };
  const std::pair<const char*, std::function<bool(bool)>> rows[] = {
      {"type", [&](bool force) { return thing->SetFieldValue<ogm::String>("type", "two", force); }},
      {"flag", [&](bool force) { return thing->SetFieldValue<ogm::Bool>("flag", false, force); }},
      {"nan", [&](bool force) { return thing->SetFieldValue<ogm::Real>("nan", std::nan(""), force); }},
      {"list", [&](bool force) { return thing->SetFieldValue<ogm::Array>("list", words(), force); }},
      {"object", [&](bool force) { return thing->SetFieldValue<ogm::Field, ogm::Object>("object", Json(R"({"a":1})"), force); }},
  };
  for (const auto& [name, write] : rows) {
    EXPECT_TRUE(write(false)) << name;
    EXPECT_EQ(Told(), Names{name});
    EXPECT_FALSE(write(false)) << name;
    EXPECT_EQ(Told(0), Names{});
    EXPECT_FALSE(write(true)) << name;
    EXPECT_EQ(Told(), Names{name});
  }
}

TEST_F(Fields, AreAddedWithTheDefaultOfTheirKindAndRemoved) {
  thing->AddField<ogm::String>("s");
  thing->AddField<ogm::Real>("r");
  thing->AddField<ogm::Array>("a");
  thing->AddField<ogm::Object>("o");
  EXPECT_EQ(Told(4).size(), 4U);
  EXPECT_TRUE(TextOf(*thing).ends_with(R"("type":"one","s":"","r":0,"a":[],"o":{}})"));
  EXPECT_FALSE(thing->AddField<ogm::String>("type"));
  EXPECT_EQ(thing->GetFieldValue<ogm::String>("type"), "one");
  EXPECT_TRUE(thing->RemoveField("type"));
  EXPECT_FALSE(thing->RemoveField("type"));
  EXPECT_EQ(Told(), Names{"type"});
  EXPECT_THROW(thing->GetFieldValue<ogm::String>("type"), ara::rest::DataModelException);
}

TEST_F(Fields, ThePreChangeCallbackSeesOldAndNew) {
  Names seen;
  thing->SetPrePropertyChangeCallback([&](const auto& object, const ogm::Field& before, const ogm::Value& after) {
    seen.push_back(static_cast<const ogm::String&>(before.GetValue()).GetValue() + '>' + static_cast<const ogm::String&>(after).GetValue() +
                   ' ' + object->template GetFieldValue<ogm::String>("type"));
  });
  thing->Set("type", "two");
  thing->Set("missing", "x");
  EXPECT_EQ(seen, Names{"one>two one"});
}

TEST_F(Fields, IdentityLeadsTheTree) {
  thing->SetName("renamed");
  const auto version = thing->ContentVersion();
  thing->SetUri(UriOf("/S/things/x"));
  EXPECT_GT(thing->ContentVersion(), version);
  EXPECT_EQ(TextOf(*thing), R"({"id":")" + thing->GetUuid().ToString() + R"(","name":"renamed","uri":"/S/things/x","type":"one"})");
}

TEST(FieldsWithoutOwner, CallNobody) {
  Thing thing{ara::rest::Uuid{}, UriOf("/S/things/x"), "Thing"};
  thing.SetPostPropertyChangeCallback([](const auto&, const auto&) { ADD_FAILURE(); });
  EXPECT_TRUE(thing.SetFieldValue<ogm::String>("type", "one", true));
}

TEST_F(Fields, OfATransactionStayAsideUntilTheCommit) {
  const ChangeScope scope{*thing};
  const auto transaction = Transaction::Begin(*thing);
  EXPECT_EQ(thing->GetLatestActiveTransaction(), transaction);
  EXPECT_TRUE(thing->SetFieldValue<ogm::String>("type", "two"));
  EXPECT_FALSE(thing->SetFieldValue<ogm::String>("type", "two"));
  EXPECT_TRUE(thing->AddField<ogm::Int>("value"));
  EXPECT_FALSE(thing->HasField("value"));
  EXPECT_EQ(thing->GetFieldValue<ogm::String>("type"), "two");
  EXPECT_TRUE(TextOf(*thing).ends_with(R"("type":"one"})"));
  transaction->Commit();
  EXPECT_TRUE(TextOf(*thing).ends_with(R"("type":"two","value":0})"));
  EXPECT_EQ(thing->GetLatestActiveTransaction(), nullptr);
}

TEST_F(Fields, AreRemovedByATransactionAtItsCommit) {
  const ChangeScope scope{*thing};
  {
    const auto dropped = Transaction::Begin(*thing);
    EXPECT_TRUE(thing->RemoveField("type"));
  }
  EXPECT_TRUE(thing->HasField("type"));
  const auto transaction = Transaction::Begin(*thing);
  EXPECT_TRUE(thing->RemoveField("type"));
  EXPECT_FALSE(thing->RemoveField("type"));
  EXPECT_THROW(thing->GetFieldValue<ogm::String>("type"), ara::rest::DataModelException);
  thing->Set("only here", "x");
  EXPECT_TRUE(thing->RemoveField("only here"));
  EXPECT_TRUE(TextOf(*thing).ends_with(R"("type":"one"})"));
  EXPECT_TRUE(thing->AddField<ogm::Int>("type"));
  EXPECT_EQ(Told(0), (Names{"type", "type", "only here", "only here", "type"}));
  transaction->Commit();
  EXPECT_TRUE(TextOf(*thing).ends_with(R"("type":0})"));
}

TEST_F(Fields, AnUpdateIsOneCommitAndOneEvent) {
  thing->SetPreTransactionCommitCallback([&](const auto& object, const ogm::Object& fields) {
    told.push_back("before " + object->template GetFieldValue<ogm::String>("type") + " " + std::to_string(fields.GetFields().size()));
  });
  thing->SetPostTransactionCommitCallback(
      [&](const auto& object, const ogm::Object&) { told.push_back("after " + object->template GetFieldValue<ogm::String>("type")); });
  thing->Update(*Json(R"({"id":"x","type":"two","name":"y","value":5,"uri":"z"})"));
  EXPECT_EQ(Told(), (Names{"type", "value", "before one 2", "after two"}));
  EXPECT_TRUE(TextOf(*thing).starts_with(R"({"id":")" + thing->GetUuid().ToString() + R"(","name":"one","uri":"/S/things/)"));
  thing->SetPreTransactionCommitCallback([](const auto&, const auto&) { throw std::runtime_error{"no"}; });
  const auto version = thing->ContentVersion();
  EXPECT_THROW(thing->Update(*Json(R"({"type":"three"})")), std::runtime_error);
  EXPECT_EQ(thing->GetFieldValue<ogm::String>("type"), "two");
  EXPECT_EQ(thing->ContentVersion(), version);
  EXPECT_EQ(Told(0), Names{"type"});
}

}  // namespace
}  // namespace zuva::test
