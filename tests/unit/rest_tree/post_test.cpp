#include <gtest/gtest.h>

#include <stdexcept>
#include <string>

#include "tests/unit/rest_tree/tree_fixture.h"

namespace zuva::test {
namespace {

class Posts : public testing::Test {
 protected:
  std::string PostWith(ServerXObject::PreUpdateCallback callback, const std::string& body = R"({"id":"x","value":5})") {
    thing->SetPreUpdateCallback(std::move(callback));
    return tree.Post(thing->Path(), body);
  }
  bool IsUnchanged() const { return !thing->HasField("value") && tree.sink->Count("changed") == 0; }

  Tree tree;
  std::shared_ptr<Thing> thing = tree.Add("one");
};

TEST_F(Posts, AnAcceptedOneIsWrittenAndShown) {
  const auto answer = PostWith([&](const auto& object, const ogm::Object& posted, ServerReply&) {
    EXPECT_EQ(object, thing);
    EXPECT_TRUE(IsUnchanged());
    return posted.HasField("value");
  });
  EXPECT_EQ(answer, TextOf(*thing));
  EXPECT_TRUE(answer.ends_with(R"("type":"one","value":5})"));
  EXPECT_EQ(tree.sink->Count("changed"), 1U);
  EXPECT_EQ(tree.Get(thing->Path()), answer);
}

TEST_F(Posts, ChangeNothingUnlessTheCallbackAcceptsInSilence) {
  const auto before = TextOf(*thing);
  EXPECT_EQ(tree.Post(thing->Path(), "{}"), "405 Method Not Allowed: GET, HEAD") << "without a callback";
  const auto answering = [](bool accepted) {
    return [accepted](const auto&, const auto&, ServerReply& reply) {
      reply.SendError("first", 409);
      reply.SendInternalError();
      return accepted;
    };
  };
  EXPECT_EQ(PostWith(answering(false)), "409 first");
  EXPECT_EQ(PostWith(answering(true)), "409 first");
  EXPECT_EQ(PostWith([](const auto&, const auto&, auto&) { return false; }), "400 Bad Request");
  EXPECT_EQ(PostWith([](const auto&, const auto&, auto&) -> bool { throw std::runtime_error{"x"}; }), "500 Internal Server Error");
  EXPECT_EQ(PostWith([](const auto&, const auto&, auto&) -> bool { throw 5; }), "500 Internal Server Error");
  EXPECT_EQ(PostWith([](const auto&, const auto&, auto&) { return true; }, "{}"), before) << "an empty one";
  EXPECT_TRUE(IsUnchanged());
}

}  // namespace
}  // namespace zuva::test
