#include <gtest/gtest.h>

#include <stdexcept>
#include <string>

#include "tests/unit/rest_tree/tree_fixture.h"

namespace zuva::test {
namespace {

class Posts : public testing::Test {
 protected:
  template <class Callback>
  std::string PostWith(Callback&& callback, const std::string& body = R"({"id":"x","value":5})") {
    thing->SetPreUpdateCallback(std::forward<Callback>(callback));
    return tree.Post(PathOf(*thing), body);
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
  EXPECT_EQ(tree.Get(PathOf(*thing)), answer);
}

TEST_F(Posts, ARefusedOneChangesNothing) {
  const auto answered = PostWith([](const auto&, const auto&, ServerReply& reply) {
    reply.SendError("Conflict: not allowed parameter(s) included", 409);
    return false;
  });
  EXPECT_EQ(answered, "409 Conflict: not allowed parameter(s) included");
  EXPECT_EQ(PostWith([](const auto&, const auto&, auto&) { return false; }), "400 Bad Request");
  EXPECT_TRUE(IsUnchanged());
}

TEST_F(Posts, AnAnswerMadeEndsTheRequestEvenIfAccepted) {
  const auto answer = PostWith([](const auto&, const auto&, ServerReply& reply) {
    reply.SendError("Accepted", 202);
    reply.SendInternalError();
    return true;
  });
  EXPECT_EQ(answer, "202 Accepted");
  EXPECT_TRUE(IsUnchanged());
}

TEST_F(Posts, AnExceptionIsAnInternalError) {
  EXPECT_EQ(PostWith([](const auto&, const auto&, auto&) -> bool { throw std::runtime_error{"vehicle gone"}; }),
            "500 Internal Server Error");
  EXPECT_EQ(PostWith([](const auto&, const auto&, auto&) -> bool { throw 5; }), "500 Internal Server Error");
  EXPECT_TRUE(IsUnchanged());
}

TEST_F(Posts, NeedACallback) {
  EXPECT_EQ(tree.Post(PathOf(*thing), "{}"), "405 Method Not Allowed: GET, HEAD");
}

TEST_F(Posts, AnEmptyOneIsAnsweredAndTellsNothing) {
  const auto before = TextOf(*thing);
  EXPECT_EQ(PostWith([](const auto&, const auto&, auto&) { return true; }, "{}"), before);
  EXPECT_TRUE(IsUnchanged());
}

TEST_F(Posts, ACallbackCanBeWrapped) {
  thing->SetPreUpdateCallback([](const auto&, const ogm::Object& posted, auto&) { return posted.HasField("value"); });
  const auto inner = thing->GetPreUpdateCallback();
  const auto outer = [inner](auto object, const auto& posted, auto& reply) {
    return !posted.HasField("bad") && inner(object, posted, reply);
  };
  EXPECT_EQ(PostWith(outer, R"({"value":1,"bad":1})"), "400 Bad Request");
  EXPECT_EQ(PostWith(outer, R"({"other":1})"), "400 Bad Request");
  EXPECT_TRUE(PostWith(outer).ends_with(R"("value":5})"));
}

}  // namespace
}  // namespace zuva::test
