#include "zuva/transaction.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "tests/unit/rest_tree/tree_fixture.h"

namespace zuva::test {
namespace {

class Transactions : public testing::Test {
 protected:
  Tree tree;
  std::shared_ptr<Thing> thing = tree.Add("one");
};

TEST_F(Transactions, WritesStayAsideUntilTheCommit) {
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
  transaction->Commit();
}

TEST_F(Transactions, ADroppedOneLeavesNoTrace) {
  const auto version = thing->ContentVersion();
  {
    const ChangeScope scope{*thing};
    const auto transaction = Transaction::Begin(*thing);
    thing->SetFieldValue<ogm::String>("type", "two");
  }
  EXPECT_EQ(thing->GetFieldValue<ogm::String>("type"), "one");
  EXPECT_EQ(thing->ContentVersion(), version);
  EXPECT_TRUE(tree.sink->Take().empty());
}

TEST_F(Transactions, AnUpdateIsOneCommitAndOneEvent) {
  std::vector<std::string> order;
  thing->SetPreTransactionCommitCallback([&](const auto& object, const ogm::Object& fields) {
    order.push_back("before " + object->template GetFieldValue<ogm::String>("type") + " " + std::to_string(fields.GetFields().size()));
  });
  thing->SetPostTransactionCommitCallback(
      [&](const auto& object, const ogm::Object&) { order.push_back("after " + object->template GetFieldValue<ogm::String>("type")); });
  thing->SetPostPropertyChangeCallback([&](const auto&, const std::string& name) { order.push_back(name); });
  thing->Update(*Json(R"({"id":"x","type":"two","name":"y","value":5,"uri":"z"})"));
  EXPECT_EQ(order, (std::vector<std::string>{"type", "value", "before one 2", "after two"}));
  EXPECT_EQ(tree.sink->Take().size(), 1U);
  EXPECT_EQ(thing->GetName(), "Thing");
  EXPECT_TRUE(TextOf(*thing).starts_with(R"({"id":")" + thing->GetUuid().ToString() + R"(","name":"Thing","uri":"/S/things/)"));
}

TEST_F(Transactions, ACommitCallbackCanStopTheCommit) {
  thing->SetPreTransactionCommitCallback([](const auto&, const auto&) { throw std::runtime_error{"no"}; });
  EXPECT_THROW(thing->Update(*Json(R"({"type":"two"})")), std::runtime_error);
  EXPECT_EQ(thing->GetFieldValue<ogm::String>("type"), "one");
  EXPECT_TRUE(tree.sink->Take().empty());
}

}  // namespace
}  // namespace zuva::test
