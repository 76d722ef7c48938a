#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "tests/unit/rest_tree/tree_fixture.h"

namespace zuva::test {
namespace {

class Resources : public testing::Test {
 protected:
  std::string EtagOf(const std::string& path) const {
    ServerReply reply;
    tree.Ask(reply, path);
    return reply.GetBody()->etag;
  }

  Tree tree;
};

TEST_F(Resources, AListIsOfItsInstant) {
  const auto first = tree.Add("one");
  const auto before = tree.things->GetElements();
  const auto second = tree.Add("two");
  tree.things->Remove(first->GetUuid());
  ASSERT_EQ(before.size(), 1U);
  EXPECT_EQ(before[0], first);
  ASSERT_EQ(tree.things->GetElements().size(), 1U);
  EXPECT_EQ(tree.things->GetElements()[0], second);
}

TEST_F(Resources, AnElementIsHeldOnce) {
  const auto thing = tree.Add("one");
  tree.things->Add(thing);
  EXPECT_EQ(tree.things->GetSize(), 1U);
  EXPECT_TRUE(tree.sink->Take().empty());
  const auto twin = std::make_shared<Thing>(thing->GetUuid(), thing->GetUri(), "Thing");
  EXPECT_THROW(tree.things->Add(twin), ara::rest::InvalidArgumentException);
  EXPECT_THROW(tree.things->Add(nullptr), ara::rest::InvalidArgumentException);
  twin->SetFieldValue<ogm::Int>("a", 1);
  EXPECT_TRUE(tree.sink->Take().empty());
  EXPECT_FALSE(tree.things->Remove(ara::rest::Uuid::MakeV4()));
}

TEST_F(Resources, AnElementThatComesBackHasItsNewPathAlone) {
  const auto thing = tree.things->MakeThing("one");
  const auto path = thing->Path();
  tree.things->Add(thing);
  const auto first = TextOf(*thing);
  thing->Set("type", "two");
  const auto second = TextOf(*thing);
  tree.things->Remove(thing->GetUuid());
  EXPECT_EQ(tree.sink->Take(), (std::vector<std::string>{"added " + path + ' ' + first, "changed " + second, "removed " + path}));
  const auto uuid = ara::rest::Uuid::MakeV4();
  thing->SetUuid(uuid);
  thing->SetUri(UriOf("/S/things/" + uuid.ToString()));
  tree.things->Add(thing);
  EXPECT_EQ(tree.Get(path), "404 Not Found");
  EXPECT_EQ(tree.Get("/S/things/" + uuid.ToString()), TextOf(*thing));
  tree.things->Remove(uuid);
  EXPECT_EQ(tree.sink->Take().back(), "removed /S/things/" + uuid.ToString());
}

TEST_F(Resources, TheTagFollowsTheContent) {
  const auto thing = tree.Add("one");
  const auto tag = EtagOf("/S/things");
  const auto rendered = thing->Render();
  EXPECT_EQ(thing->Render(), rendered) << "not made again";
  EXPECT_EQ(tree.things->Render(), tree.things->Render());
  thing->SetFieldValue<ogm::String>("type", "two");
  EXPECT_NE(EtagOf("/S/things"), tag);
  thing->SetFieldValue<ogm::String>("type", "one");
  EXPECT_EQ(EtagOf("/S/things"), tag);  // of the bytes, not of the version
  tree.Add("three");
  EXPECT_NE(EtagOf("/S/things"), tag);
}

TEST_F(Resources, AnExchangeOfElementsWithEqualVersionsIsSeen) {
  const auto one = tree.Add("one");
  const auto two = tree.things->MakeThing("two");
  ASSERT_EQ(one->ContentVersion(), two->ContentVersion());
  const auto before = tree.Get("/S/things");
  tree.things->Remove(one->GetUuid());
  tree.things->Add(two);
  EXPECT_EQ(tree.Get("/S/things"), '[' + TextOf(*two) + ']');
}

TEST_F(Resources, ACompositeShowsWhatItEmbedsAndTellsOnlyItsOwnChanges) {
  const auto part = tree.Add("part");
  const auto whole = tree.things->MakeThing("whole");
  whole->Embed("part", part);
  tree.things->Add(whole);
  tree.sink->Take();
  const auto tag = EtagOf(whole->Path());
  part->SetFieldValue<ogm::Int>("value", 7);
  EXPECT_NE(EtagOf(whole->Path()), tag);
  EXPECT_NE(tree.Get(whole->Path()).find(R"("value":7)"), std::string::npos);
  EXPECT_EQ(tree.sink->Take(), std::vector<std::string>{"changed " + TextOf(*part)});
}

}  // namespace
}  // namespace zuva::test
