#include "serve/message.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

namespace zuva::serve {
namespace {

TEST(Message, EchoesARequestIdAsTheClientWroteIt) {
  for (const std::string id : {R"("a\"b")", "7", "-1", "1234567.891", "9007199254740993", "0.1", "18446744073709551615", "1.0"}) {
    Echo echo;
    std::string fault;
    ASSERT_TRUE(ReadMessage(R"({"action":"get","path":"/","requestId":)" + id + "}", echo, fault)) << fault;
    EXPECT_EQ(echo.requestId, id);
  }
  Echo echo;
  std::string fault;
  ASSERT_TRUE(ReadMessage(R"({"path":"a\"requestId","action":"get","value":{"requestId":7.5}, "requestId" : 1.50 })", echo, fault))
      << fault;
  EXPECT_EQ(echo.requestId, "1.50");
}

TEST(Message, SaysWhatIsWrongAndEchoesWhatIsSound) {
  struct Row {
    std::string text, fault, action, id;
  };
  for (const auto& row :
       {Row{"{", "", "", ""}, Row{"[]", "", "", ""}, Row{R"({"action":"get","action":"get"})", "", "", ""},
        Row{R"({"action":"get","path":"/"})", "requestId", "get", ""},
        Row{R"({"action":"get","path":"/","requestId":null})", "requestId", "get", ""}, Row{R"({"requestId":1})", "action", "", "1"},
        Row{R"({"action":"fly","requestId":1})", "unknown action", "fly", "1"},
        Row{R"({"action":"get","requestId":1})", "path", "get", "1"},
        Row{R"({"action":"subscribe","path":7,"requestId":1})", "path", "subscribe", "1"},
        Row{R"({"action":"set","path":"/","value":1,"requestId":1})", "value", "set", "1"},
        Row{R"({"action":"unsubscribe","subscriptionId":7,"requestId":1})", "subscriptionId", "unsubscribe", "1"}}) {
    Echo echo;
    std::string fault;
    EXPECT_FALSE(ReadMessage(row.text, echo, fault)) << row.text;
    EXPECT_NE(fault.find(row.fault), std::string::npos) << fault;
    EXPECT_EQ(echo.action, row.action);
    EXPECT_EQ(echo.requestId, row.id);
    const auto answer = nlohmann::json::parse(ErrorAnswer(echo, 400, fault));
    EXPECT_EQ(answer.contains("requestId"), !row.id.empty());
    EXPECT_EQ(answer["error"]["number"], 400);
    EXPECT_EQ(answer["error"]["reason"], "Bad Request");
  }
}

}  // namespace
}  // namespace zuva::serve
