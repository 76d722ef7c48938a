#include <gtest/gtest.h>

#include <stdexcept>
#include <string>

#include "tests/unit/rest_tree/tree_fixture.h"

namespace zuva::test {
namespace {

class Walk : public testing::Test {
 protected:
  std::string Ask(const std::string& target, Method method) const {
    ServerReply reply;
    tree.Ask(reply, target, method);
    return Described(reply);
  }

  Tree tree;
};

const std::string kNil = "00000000-0000-0000-0000-000000000000";

TEST_F(Walk, ShowsTheServicesThatAreAnnounced) {
  EXPECT_EQ(tree.Get("/"), R"({"name":"server","services":[]})");
  tree.service->AddVersion("0.10.1");
  tree.service->Register({});
  const std::string announced = R"({"id":")" + kNil + R"(","name":"S","uri":"/S","description":"","versions":["0.10.1"]})";
  EXPECT_EQ(tree.Get("/"), R"({"name":"server","services":[)" + announced + "]}");
  EXPECT_EQ(tree.Get("/S?identity"), announced);
  tree.service->Deregister();
  EXPECT_EQ(tree.Get("/"), R"({"name":"server","services":[]})");
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
  EXPECT_EQ(tree.Get(PathOf(*two)), TextOf(*two));
  EXPECT_EQ(Ask(PathOf(*two), Method::Head), TextOf(*two));
}

TEST_F(Walk, FindsElementsUnderUrisOfTheirOwn) {
  tree.things->Add(ara::rest::MakeSharedPointer<Thing>("/S/things/named", ara::rest::Uuid::MakeV4(), "Thing"));
  EXPECT_TRUE(tree.Get("/S/things/named").starts_with('{'));
  EXPECT_EQ(tree.Get("/S/things/" + tree.things->GetElements()[0]->GetUuid().ToString()), "404 Not Found");
}

TEST_F(Walk, KnowsNoOtherPath) {
  const auto thing = tree.Add("one");
  for (const auto& path : {std::string{"/s"}, std::string{"/S/"}, std::string{"/S//things"}, std::string{"/S/thing"}, PathOf(*thing) + "/x",
                           PathOf(*thing) + '/', "/S/others/" + thing->GetUuid().ToString(), "/S/" + tree.things->GetUuid().ToString(),
                           std::string{"S"}, std::string{}}) {
    EXPECT_EQ(tree.Get(path), "404 Not Found") << path;
    EXPECT_EQ(Ask(path, Method::Post), "404 Not Found") << path;
  }
}

TEST_F(Walk, OffersReadingAlone) {
  const auto thing = tree.Add("one");
  const std::string refused = "405 Method Not Allowed: GET, HEAD";
  for (const auto& path : {std::string{"/"}, std::string{"/S"}, std::string{"/S/things"}, PathOf(*thing)}) {
    for (const auto method : {Method::Post, Method::Put, Method::Delete, Method::Unknown}) EXPECT_EQ(Ask(path, method), refused) << path;
  }
  thing->SetPreUpdateCallback([](const auto&, const auto&, auto&) { return true; });
  EXPECT_EQ(Ask(PathOf(*thing), Method::Put), "405 Method Not Allowed: GET, HEAD, POST");
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
  tree.Get(PathOf(*thing));
  EXPECT_EQ(tree.Get(PathOf(*thing)), TextOf(*thing));  // a cached text is asked for too
  open = false;
  EXPECT_EQ(tree.Get(PathOf(*thing)), "403 Closed");
  EXPECT_EQ(asked, 3);
  tree.things->SetPreGetCallback([](const auto&, auto&) { return false; });
  EXPECT_EQ(tree.Get("/S/things"), "400 Bad Request");
  tree.things->SetPreGetCallback([](const auto&, auto&) -> bool { throw std::runtime_error{"broken"}; });
  EXPECT_EQ(tree.Get("/S/things"), "500 Internal Server Error");
}

TEST_F(Walk, FindersSearchTheWholeTree) {
  const auto thing = tree.Add("one");
  EXPECT_EQ(tree.server->FindByUriRecursive(PathOf(*thing)), thing);
  EXPECT_EQ(tree.server->FindByUuidRecursive(thing->GetUuid().ToString()), thing);
  EXPECT_EQ(tree.server->FindByNameRecursive("others"), tree.others);
  EXPECT_EQ(tree.service->FindByNameRecursive("Thing"), thing);
  EXPECT_EQ(tree.server->FindByUuidRecursive("no uuid"), nullptr);
  EXPECT_EQ(tree.service->FindByUri(UriOf("/S/things")), tree.things);
  auto routes = tree.server->GetRoutes();
  EXPECT_TRUE(routes.Has(PathOf(*thing)));
  tree.things->ClearRouting(routes);
  EXPECT_FALSE(routes.Has("/S/things"));
  EXPECT_TRUE(routes.Has("/S/others"));
}

}  // namespace
}  // namespace zuva::test
