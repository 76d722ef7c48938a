#include <gtest/gtest.h>

#include <algorithm>
#include <cctype>
#include <stdexcept>
#include <string>

#include "tests/unit/rest_tree/tree_fixture.h"

namespace zuva::test {
namespace {

struct Walk : testing::Test {
  Tree tree;
};

const std::string kNil = "00000000-0000-0000-0000-000000000000";

TEST_F(Walk, ShowsTheServicesThatAreAnnounced) {
  EXPECT_EQ(tree.Get("/"), R"({"name":"test","services":[]})");
  tree.service->AddVersion("0.10.1");
  tree.service->Register({});
  const std::string announced = R"({"id":")" + kNil + R"(","name":"S","uri":"/S","description":"","versions":["0.10.1"]})";
  EXPECT_EQ(tree.Get("/"), R"({"name":"test","services":[)" + announced + "]}");
  EXPECT_EQ(tree.Get("/S?identity"), announced);
  tree.service->Deregister();
  EXPECT_EQ(tree.Get("/"), R"({"name":"test","services":[]})");
}

TEST_F(Walk, HoldsAServiceOnceAndLetsItOutlive) {
  tree.server->Add(tree.service);
  EXPECT_EQ(tree.server->GetServices().size(), 1U);
  EXPECT_THROW(tree.server->Add(std::make_shared<ServerService>(ara::rest::Uuid{}, UriOf("/S"), "S")), ara::rest::InvalidArgumentException);
  tree.server.reset();
  EXPECT_EQ(tree.service->Register({}), tree.service);
}

TEST_F(Walk, ShowsAServiceWithItsResources) {
  tree.service->Remove(tree.others->GetUuid());
  tree.things->SetDescription("all things");
  const auto identity =
      R"({"id":")" + tree.things->GetUuid().ToString() + R"(","name":"things","uri":"/S/things","description":"all things"})";
  EXPECT_EQ(tree.Get("/S"),
            R"({"id":")" + kNil + R"(","name":"S","uri":"/S","description":"","versions":[],"resources":[)" + identity + "]}");
  EXPECT_EQ(tree.Get("/S/things?identity"), identity);
  EXPECT_EQ(tree.Get("/S/others"), "404 Not Found");
}

TEST_F(Walk, ShowsTheSpecificationOfWhatHasOne) {
  EXPECT_EQ(tree.Get("/S/things?specification"), "404 Not Found");
  tree.things->SetSpec(Json(R"({"things":{"model":1}})"));
  EXPECT_EQ(tree.Get("/S/things?specification"), R"({"things":{"model":1}})");
  tree.things->SetSpec(Json("{}"));
  EXPECT_EQ(tree.Get("/S/things?specification"), "{}");
}

TEST_F(Walk, ShowsElementsInInsertionOrder) {
  EXPECT_EQ(tree.Get("/S/things"), "[]");
  const auto one = tree.Add("one");
  const auto two = tree.Add("two");
  EXPECT_EQ(tree.Get("/S/things"), '[' + TextOf(*one) + ',' + TextOf(*two) + ']');
  EXPECT_EQ(tree.Get(two->Path()), TextOf(*two));
  EXPECT_EQ(tree.Get(two->Path(), Method::Head), TextOf(*two));
}

TEST_F(Walk, FindsElementsUnderUrisOfTheirOwn) {
  tree.things->Add(std::make_shared<Thing>(ara::rest::Uuid::MakeV4(), UriOf("/S/things/named"), "Thing"));
  EXPECT_TRUE(tree.Get("/S/things/named").starts_with('{'));
  EXPECT_EQ(tree.Get("/S/things/" + tree.things->GetElements()[0]->GetUuid().ToString()), "404 Not Found");
}

TEST_F(Walk, TakesEscapesAndCapitalsThatMeanTheSamePath) {
  const auto thing = tree.Add("one");
  auto capitals = thing->Path();
  std::transform(capitals.begin() + 10, capitals.end(), capitals.begin() + 10, [](unsigned char c) { return std::toupper(c); });
  auto escaped = thing->Path();
  escaped.replace(escaped.find('-'), 1, "%2D");
  for (const auto& path : {capitals, escaped, "/%53/%74hing%73/" + thing->GetUuid().ToString()}) {
    EXPECT_EQ(tree.Get(path), TextOf(*thing)) << path;
  }
  for (const auto* const path :
       {"/S%2Fthings", "/S%2fthings", "/S/thing%", "/S/thing%7", "/S/thing%+3", "/S/%2e/things", "/S/thing%733", "/%2553"}) {
    EXPECT_EQ(tree.Get(path), "404 Not Found") << path;
  }
}

TEST_F(Walk, KnowsNoOtherPath) {
  const auto thing = tree.Add("one");
  const auto id = thing->GetUuid().ToString();
  const std::string paths[] = {
      "/s", "/S/", "/S//things",         "/S/thing",         "/S/others/" + id, "/S/" + tree.things->GetUuid().ToString(),
      "S",  "",    thing->Path() + "/x", thing->Path() + '/'};
  for (const auto& path : paths) {
    EXPECT_EQ(tree.Get(path), "404 Not Found") << path;
    EXPECT_EQ(tree.Get(path, Method::Post), "404 Not Found") << path;
  }
}

TEST_F(Walk, OffersReadingAlone) {
  const auto thing = tree.Add("one");
  const std::string refused = "405 Method Not Allowed: GET, HEAD";
  for (const auto& path : {std::string{"/"}, std::string{"/S"}, std::string{"/S/things"}, thing->Path()}) {
    for (const auto method : {Method::Post, Method::Put, Method::Delete, Method::Unknown})
      EXPECT_EQ(tree.Get(path, method), refused) << path;
  }
  thing->SetPreUpdateCallback([](const auto&, const auto&, auto&) { return true; });
  EXPECT_EQ(tree.Get(thing->Path(), Method::Put), "405 Method Not Allowed: GET, HEAD, POST");
}

TEST_F(Walk, AsksBeforeEachGet) {
  const auto thing = tree.Add("one");
  bool open = true;
  int asked = 0;
  thing->SetPreGetCallback([&](const auto& object, ServerReply& reply) {
    EXPECT_EQ(object, thing);
    ++asked;
    if (!open) reply.SendError("Closed", 403);
    return open;
  });
  tree.Get(thing->Path());
  EXPECT_EQ(tree.Get(thing->Path()), TextOf(*thing));  // a cached text is asked for too
  open = false;
  EXPECT_EQ(tree.Get(thing->Path()), "403 Closed");
  EXPECT_EQ(asked, 3);
  tree.things->SetPreGetCallback([](const auto&, auto&) { return false; });
  EXPECT_EQ(tree.Get("/S/things"), "400 Bad Request");
  tree.things->SetPreGetCallback([](const auto&, auto&) -> bool { throw std::runtime_error{"broken"}; });
  EXPECT_EQ(tree.Get("/S/things"), "500 Internal Server Error");
}

TEST_F(Walk, FindersSearchTheWholeTree) {
  const auto thing = tree.Add("one");
  EXPECT_EQ(tree.server->FindByUriRecursive(thing->Path()), thing);
  EXPECT_EQ(tree.server->FindByUuidRecursive(thing->GetUuid().ToString()), thing);
  EXPECT_EQ(tree.server->FindByNameRecursive("others"), tree.others);
  EXPECT_EQ(tree.service->FindByNameRecursive("one"), thing);
  EXPECT_EQ(tree.server->FindByUuidRecursive("no uuid"), nullptr);
  EXPECT_EQ(tree.service->FindByUri(UriOf("/S/things")), tree.things);
  auto routes = tree.server->GetRoutes();
  EXPECT_TRUE(routes.Has(thing->Path()));
  tree.things->ClearRouting(routes);
  EXPECT_FALSE(routes.Has("/S/things"));
  EXPECT_TRUE(routes.Has("/S/others"));
}

}  // namespace
}  // namespace zuva::test
