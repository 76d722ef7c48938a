#include "zuva/query.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "tests/unit/rest_tree/tree_fixture.h"
#include "zuva/rendered.h"

namespace zuva::test {
namespace {

const std::string kTree = R"({"id":"1","uri":"/x","type":"a b","n":80,"r":12.5,"flag":true,"list":["a"]})";

std::string Shown(const std::string& query) {
  const auto parsed = ParseQuery(query);
  if (!parsed) return "malformed";
  const auto tree = Json(kTree);
  if (!parsed->Accepts(*tree)) return "";
  std::string out;
  parsed->WriteTo(out, *tree);
  return out;
}

TEST(Queries, FilterByTheTextOfScalars) {
  for (const auto* const query : {"", "type=a%20b", "n=80", "r=12.5", "flag=true", "n=80&type=a%20b&"})
    EXPECT_EQ(Shown(query), kTree) << query;
  for (const auto* const query : {"type=a+b", "n=80.0", "flag=1", "list=a", "missing=", "n", "n=80&n=81", "Type=a%20b"}) {
    EXPECT_EQ(Shown(query), "") << query;
  }
  EXPECT_EQ(Shown("type=%zz"), "malformed");
  EXPECT_EQ(Shown("type=\x01"), "malformed");
}

TEST(Queries, ProjectionKeepsIdAndUri) {
  EXPECT_EQ(Shown("fields=n,type"), R"({"id":"1","uri":"/x","type":"a b","n":80})");
  EXPECT_EQ(Shown("fields="), R"({"id":"1","uri":"/x"})");
  EXPECT_EQ(Shown("fields=,unknown,&fields=r"), R"({"id":"1","uri":"/x","r":12.5})");
  EXPECT_EQ(Shown("fields=r&n=81"), "");
}

TEST(Queries, AreTakenOffTheTarget) {
  const auto plain = ParseTarget("/S/things");
  EXPECT_EQ(plain->path, "/S/things");
  EXPECT_TRUE(plain->query.IsPlain());
  EXPECT_TRUE(ParseTarget("/S?identity")->query.identity);
  EXPECT_TRUE(ParseTarget("/S?specification")->query.specification);
  EXPECT_FALSE(ParseTarget("/S?identity=x")->query.identity);
  EXPECT_FALSE(ParseTarget("/S?a=%"));
  std::string names = "fields=a", filters = "a=1";
  for (std::size_t i = 1; i < Query::kMostTerms; ++i) names += ",a", filters += "&a=1";
  EXPECT_TRUE(ParseQuery(names) && ParseQuery(filters));
  EXPECT_FALSE(ParseQuery(names + ",a") || ParseQuery(filters + "&a=1")) << "too many";
}

TEST(Queries, PickElementsOfAResource) {
  Tree tree;
  const auto one = tree.Add("one");
  const auto two = tree.Add("two");
  two->SetFieldValue<ogm::Int>("value", 1);
  EXPECT_EQ(tree.Get("/S/things?type=two"), '[' + TextOf(*two) + ']');
  EXPECT_EQ(tree.Get("/S/things?type=two&value=2"), "[]");
  two->SetFieldValue<ogm::Int>("value", 2);
  const auto projected = R"({"id":")" + two->GetUuid().ToString() + R"(","uri":")" + two->Path() + R"(","value":2})";
  EXPECT_EQ(tree.Get("/S/things?type=two&value=2&fields=value"), '[' + projected + ']');
  EXPECT_EQ(tree.Get(two->Path() + "?fields=value"), projected);
}

TEST(EntityTags, AreComparedWeaklyOrStrongly) {
  const auto tag = MakeEtag("[]");
  EXPECT_NE(tag, MakeEtag("{}"));
  const auto named = [](std::string_view field, std::string_view etag) {
    return std::pair{NamesEtag(field, etag, EtagComparison::kWeak), NamesEtag(field, etag, EtagComparison::kStrong)};
  };
  for (const auto& field : {tag, std::string{"*"}, "\"other\" ,\t W/\"x,y\", " + tag, "W/" + tag + "," + tag})
    EXPECT_EQ(named(field, tag), std::pair(true, true)) << field;
  EXPECT_EQ(named("W/" + tag, tag), std::pair(true, false));
  EXPECT_EQ(named(tag, "W/" + tag), std::pair(true, false));
  EXPECT_EQ(named("W/" + tag, "W/" + tag), std::pair(true, false));
  for (const auto& field : {std::string{}, tag.substr(1), tag.substr(0, tag.size() - 1), std::string{"\"other\""}, "x" + tag})
    EXPECT_EQ(named(field, tag), std::pair(false, false)) << field;
}

}  // namespace
}  // namespace zuva::test
