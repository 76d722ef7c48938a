#include <memory>
#include <string>

#include <gtest/gtest.h>

#include "tests/unit/rest_serve/served_tree.h"

namespace zuva::serve {
namespace {

using nlohmann::json;

class WebSocketTest : public testing::Test {
 protected:
  WebSocketTest() { tree.Guard(*thing, gate); }
  json Set(const json& value, const std::string& id) const {
    return {{"action", "set"}, {"path", thing->Path()}, {"value", value}, {"requestId", id}};
  }

  test::ServedTree tree{{{"limits", {{"subscriptionsPerClient", 2}, {"bodyBytes", 1000}}}, {"allowedOrigins", {"https://app.example"}}}};
  std::shared_ptr<test::Thing> thing = tree.things->AddThing("a");
  std::shared_ptr<test::Gate> gate = std::make_shared<test::Gate>();
  test::WsClient socket = tree.Socket();
};

TEST_F(WebSocketTest, GetTakesWhatHttpTakes) {
  auto http = tree.Http();
  for (const std::string path : {"/", "/S", "/S?identity", "/S/things", "/S/things?type=a&fields=type", "/S/things?type=b"}) {
    const auto answer = socket.Ask({{"action", "get"}, {"path", path}});
    EXPECT_EQ(answer["data"], http.Get(path).Json()) << path;
    EXPECT_EQ(answer["ts"].get<std::string>().size(), 24U);
  }
}

TEST_F(WebSocketTest, ErrorsHaveNumberReasonAndMessage) {
  struct Row {
    json message;
    unsigned number;
  };
  const auto other = tree.others->AddThing("read only")->Path();
  for (const auto& row :
       {Row{{{"action", "get"}, {"path", "/T"}}, 404}, Row{{{"action", "get"}, {"path", "/S/things?a=%zz"}}, 400},
        Row{{{"action", "set"}, {"path", "/S/things/x"}, {"value", json::object()}}, 404},
        Row{{{"action", "set"}, {"path", other}, {"value", json::object()}}, 405},
        Row{{{"action", "set"}, {"path", "/S"}, {"value", json::object()}}, 405}, Row{{{"action", "subscribe"}, {"path", "/T"}}, 404},
        Row{{{"action", "subscribe"}, {"path", "/"}}, 405}, Row{{{"action", "subscribe"}, {"path", "/S/things?fields=type"}}, 400},
        Row{{{"action", "subscribe"}, {"path", "/S?type=a"}}, 400}, Row{{{"action", "unsubscribe"}, {"subscriptionId", "9"}}, 404},
        Row{{{"action", "fly"}, {"path", "/"}}, 400}}) {
    const auto answer = socket.Ask(row.message);
    EXPECT_EQ(answer["action"], row.message["action"]);
    EXPECT_EQ(answer["error"].value("number", 0U), row.number) << row.message;
    EXPECT_FALSE(answer["error"]["reason"].empty());
  }
  socket.SendText("no json");
  const auto answer = socket.Receive();
  ASSERT_TRUE(answer);
  EXPECT_EQ((*answer)["error"]["number"], 400);
  EXPECT_FALSE(answer->contains("requestId"));
}

TEST_F(WebSocketTest, ASetHoldsLaterMessagesOfItsSocketOnly) {
  socket.Send(Set({{"text", "1"}}, "1"));
  socket.Send({{"action", "get"}, {"path", thing->Path()}, {"requestId", "2"}});
  ASSERT_TRUE(gate->WaitForGuests(1));
  EXPECT_FALSE(tree.Socket().Ask({{"action", "get"}, {"path", thing->Path()}})["data"].contains("text"));
  gate->Open();
  const auto set = socket.Receive();
  const auto get = socket.Receive();
  ASSERT_TRUE(set && get);
  EXPECT_EQ((*set)["requestId"], "1");
  EXPECT_EQ((*set)["status"], 200);
  EXPECT_EQ((*get)["requestId"], "2");
  EXPECT_EQ((*get)["data"], (*set)["data"]);
  EXPECT_EQ((*get)["data"]["text"], "1");
}

TEST_F(WebSocketTest, ASetHasTheAnswersOfAPost) {
  gate->Open();
  const auto accepted = socket.Ask(Set({{"refuse", 202}}, "1"));
  EXPECT_EQ(accepted["status"], 202);
  EXPECT_EQ(accepted["message"], "refused");
  const auto refused = socket.Ask(Set({{"refuse", 409}}, "2"));
  EXPECT_EQ(refused["error"], (json{{"number", 409}, {"reason", "Conflict"}, {"message", "refused"}}));
  EXPECT_EQ(socket.Ask(Set({{"throw", 1}}, "3"))["error"]["number"], 500);
}

TEST_F(WebSocketTest, SubscriptionsAreLimitedAndEnd) {
  const auto first = socket.Subscribe("/S")["subscriptionId"];
  socket.Subscribe("/S/things");
  EXPECT_EQ(socket.Ask({{"action", "subscribe"}, {"path", "/S"}})["error"]["number"], 429);
  EXPECT_EQ(socket.Ask({{"action", "unsubscribe"}, {"subscriptionId", first}})["subscriptionId"], first);
  EXPECT_EQ(socket.Ask({{"action", "unsubscribe"}, {"subscriptionId", first}})["error"]["number"], 404);
  EXPECT_NE(socket.Subscribe("/S")["subscriptionId"], first);
}

TEST_F(WebSocketTest, AnUpgradeOfTheSameOrAListedOriginPasses) {
  EXPECT_NO_THROW(tree.Socket("/S"));
  EXPECT_NO_THROW(tree.Socket("/", {{"Origin", "https://app.example"}}));
  EXPECT_NO_THROW(tree.Socket("/", {{"Origin", "http://127.0.0.1:" + std::to_string(tree.port)}}));
}

}  // namespace
}  // namespace zuva::serve
