#include "zuva/change_scope.h"

#include <gtest/gtest.h>

#include <stdexcept>
#include <string>
#include <vector>

#include "tests/unit/rest_tree/tree_fixture.h"

namespace zuva::test {
namespace {

class ChangeScopes : public testing::Test {
 protected:
  Tree tree;
  std::shared_ptr<Thing> thing = tree.Add("one");
};

TEST_F(ChangeScopes, ManyWritesMakeOneEventAtTheEnd) {
  {
    const ChangeScope scope{*thing};
    thing->SetFieldValue<ogm::Int>("a", 1);
    const ChangeScope inner{*thing};
    thing->SetFieldValue<ogm::Int>("b", 2);
    EXPECT_EQ(tree.sink->Count("changed"), 0U);
  }
  const auto lines = tree.sink->Take();
  ASSERT_EQ(lines.size(), 1U);
  EXPECT_TRUE(lines[0].ends_with(R"("a":1,"b":2})"));
}

TEST_F(ChangeScopes, NothingChangedIsNothingTold) {
  {
    const ChangeScope scope{*thing};
    thing->SetFieldValue<ogm::String>("type", "one");
  }
  EXPECT_TRUE(tree.sink->Take().empty());
}

TEST_F(ChangeScopes, UnwindingTellsWhatWasWritten) {
  try {
    const ChangeScope scope{*thing};
    thing->SetFieldValue<ogm::Int>("a", 1);
    throw std::domain_error{"field b"};
  } catch (const std::domain_error&) {
    thing->SetFieldValue<ogm::Int>("a", 1);
  }
  EXPECT_EQ(tree.sink->Count("changed"), 1U);
  EXPECT_EQ(thing->GetFieldValue<ogm::Int>("a"), 1);
}

TEST_F(ChangeScopes, CallbacksOfTheFieldsRunAtOnce) {
  std::vector<std::string> told;
  thing->SetPostPropertyChangeCallback([&](const auto&, const std::string& name) { told.push_back(name); });
  const ChangeScope scope{*thing};
  thing->SetFieldValue<ogm::Int>("a", 1);
  EXPECT_EQ(told, std::vector<std::string>{"a"});
}

TEST_F(ChangeScopes, AnAdditionTellsAllThatWasWrittenBefore) {
  const auto added = tree.Make("view");
  {
    const ChangeScope scope{*added};
    added->SetFieldValue<ogm::Int>("a", 1);
    tree.things->Add(added);
  }
  EXPECT_EQ(tree.sink->Take(), std::vector<std::string>{"added " + PathOf(*added) + ' ' + TextOf(*added)});
  {
    const ChangeScope scope{*added};
    tree.things->Remove(added->GetUuid());
    tree.things->Add(added);
    added->SetFieldValue<ogm::Int>("a", 2);
  }
  EXPECT_EQ(tree.sink->Count("changed"), 1U);
}

TEST_F(ChangeScopes, ARemovedElementTellsNothing) {
  {
    const ChangeScope scope{*thing};
    thing->SetFieldValue<ogm::Int>("a", 1);
    tree.things->Remove(thing->GetUuid());
    thing->SetFieldValue<ogm::Int>("a", 2);
  }
  thing->SetFieldValue<ogm::Int>("a", 3);
  EXPECT_EQ(tree.sink->Take(), std::vector<std::string>{"removed " + PathOf(*thing)});
}

}  // namespace
}  // namespace zuva::test
