#include "zuva/change_scope.h"

#include <gtest/gtest.h>

#include <stdexcept>
#include <string>
#include <vector>

#include "tests/support/failing_new.h"
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
    thing->SetFieldValue<ogm::String>("type", "one");
    EXPECT_EQ(tree.sink->Count("changed"), 0U);
  }
  const auto lines = tree.sink->Take();
  ASSERT_EQ(lines.size(), 1U);
  EXPECT_TRUE(lines[0].ends_with(R"("a":1,"b":2})"));
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

// Whatever allocation fails: list, objects and store agree, an update is whole or not at all, and nothing stays open.
TEST(WithoutMemory, ObjectsAndListsStayConsistent) {
  const auto posted = Json(R"({"type":"posted, and too long for a string's own room","value":5,"list":[1]})");
  bool failed = true;
  for (unsigned n = 1; failed; ++n) {
    Tree tree;
    const auto one = tree.Add("one");
    const auto two = tree.things->MakeThing("two");
    try {
      const test_support::FailingNew failing{n};
      one->Update(*posted);
      one->SetName("a name that is too long for a string's own room");
      tree.things->Add(two);
      tree.things->Remove(one->GetUuid());
    } catch (const std::exception&) {  // bad_alloc, or a null pointer of the tree's own allocator
    }
    failed = test_support::FailingNew::HasFailed();
    const auto text = TextOf(*one);
    EXPECT_NE(text.find("posted") == std::string::npos, text.find(R"("value":5,"list":[1])") != std::string::npos) << text;
    EXPECT_NE(text.find("\"name\":\"" + one->GetName() + '"'), std::string::npos) << text;
    tree.sink->Take();
    for (const auto& thing : {one, two}) {
      EXPECT_EQ(thing->GetLatestActiveTransaction(), nullptr);
      const bool isListed = tree.things->FindByUuid(thing->GetUuid()) != nullptr;
      EXPECT_EQ(tree.Get(thing->Path()), isListed ? TextOf(*thing) : "404 Not Found");
      thing->SetFieldValue<ogm::Int>("later", 1);
      EXPECT_EQ(tree.sink->Take().size(), isListed ? 1U : 0U) << "allocation " << n;
    }
  }
}

TEST_F(ChangeScopes, AnAdditionTellsAllThatWasWrittenBefore) {
  const auto added = tree.things->MakeThing("view");
  {
    const ChangeScope scope{*added};
    added->SetFieldValue<ogm::Int>("a", 1);
    tree.things->Add(added);
  }
  EXPECT_EQ(tree.sink->Take(), std::vector<std::string>{"added " + added->Path() + ' ' + TextOf(*added)});
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
  EXPECT_EQ(tree.sink->Take(), std::vector<std::string>{"removed " + thing->Path()});
}

}  // namespace
}  // namespace zuva::test
