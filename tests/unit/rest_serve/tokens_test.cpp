#include <gtest/gtest.h>

#include "tests/support/raw_socket.h"
#include "tests/unit/rest_serve/served_tree.h"

namespace zuva::serve {
namespace {

using nlohmann::json;
using test_support::Headers;

class Door : public testing::Test {
 protected:
  Door() {
    const auto thing = tree.things->AddThing("writable");
    gate->Open();
    tree.Guard(*thing, gate);
    path = thing->Path();
  }

  static Headers Bearing(const std::string& token) { return {{"Authorization", "Bearer " + token}}; }
  unsigned Read(const Headers& headers) { return tree.Http().Get(path, headers).status; }
  unsigned Write(const Headers& headers) { return tree.Http().Post(path, R"({"type":"new"})", headers).status; }
  json Set(test_support::WsClient& socket) { return socket.Ask({{"action", "set"}, {"path", path}, {"value", {{"type", "newer"}}}}); }

  std::shared_ptr<test::Gate> gate = std::make_shared<test::Gate>();
  test::ServedTree tree{
      {{"tokens", {{{"token", "reader-1"}}, {{"token", "writer/1+=="}, {"write", true}}, {{"token", "writer-2"}, {"write", true}}}},
       {"allowedOrigins", {"https://app.example"}}}};
  std::string path;
};

TEST_F(Door, OpensForKnownTokensOnly) {
  const auto refused = tree.Http().Get(path);
  EXPECT_EQ(refused.status, 401U);
  EXPECT_EQ(refused.headers.at("www-authenticate"), "Bearer");
  EXPECT_EQ(refused.Json().value("title", ""), "Unauthorized");
  for (const auto* token : {"", "reader", "reader-12", "READER-1", "reader-1, Bearer writer-2"})
    EXPECT_EQ(Read(Bearing(token)), 401U) << token;
  EXPECT_EQ(Read({{"Authorization", "Basic reader-1"}}), 401U);
  EXPECT_EQ(Read({{"Sec-WebSocket-Protocol", "bearer.reader-1"}}), 401U) << "that is for sockets";
  EXPECT_EQ(Read(Bearing("reader-1")), 200U);
  EXPECT_EQ(Read({{"authorization", "bearer  reader-1"}}), 200U);
  EXPECT_EQ(tree.Http().Get("/nothing").status, 401U) << "who may not come in learns nothing of what is there";
}

TEST_F(Door, LetsWritersWriteAndReadersRead) {
  EXPECT_EQ(Write({}), 401U);
  EXPECT_EQ(Write(Bearing("reader-1")), 403U);
  EXPECT_EQ(Write(Bearing("writer/1+==")), 200U);
  EXPECT_EQ(gate->Guests(), 1U);
}

TEST_F(Door, AsksNoTokenOfAPreflight) {
  const Headers preflight{{"Origin", "https://app.example"}, {"Access-Control-Request-Method", "POST"}};
  const auto allowed = tree.Http().Request("OPTIONS", path, {}, preflight);
  EXPECT_EQ(allowed.status, 204U);
  EXPECT_EQ(allowed.headers.at("access-control-allow-headers"), "content-type, authorization");
  EXPECT_EQ(tree.Http().Request("OPTIONS", path).status, 401U);
  EXPECT_EQ(
      tree.Http().Request("OPTIONS", path, {}, {{"Origin", "https://evil.example"}, {"Access-Control-Request-Method", "POST"}}).status,
      401U);
}

TEST_F(Door, GivesASocketTheRightsOfItsToken) {
  EXPECT_THROW(tree.Socket(), std::runtime_error);
  EXPECT_THROW(tree.Socket("/", {{"Sec-WebSocket-Protocol", "bearer.nobody"}}), std::runtime_error);
  auto reader = tree.Socket("/", Bearing("reader-1"));
  EXPECT_EQ(Set(reader)["error"].value("number", 0), 403);
  EXPECT_TRUE(reader.Ask({{"action", "get"}, {"path", path}}).contains("data"));
  auto page = tree.Socket("/", {{"Sec-WebSocket-Protocol", "chat, bearer.writer-2"}});
  EXPECT_EQ(Set(page).value("status", 0), 200);
}

TEST_F(Door, NamesTheSubprotocolThatShowedTheToken) {
  const std::string upgrade =
      "GET / HTTP/1.1\r\nHost: localhost\r\nConnection: Upgrade\r\nUpgrade: websocket\r\nSec-WebSocket-Version: 13\r\n"
      "Sec-WebSocket-Key: dGhlIHNhbXBsZSBub25jZQ==\r\nSec-WebSocket-Protocol: chat, bearer.reader-1\r\n\r\n";
  test_support::RawSocket socket{tree.port};
  socket.Send(upgrade);
  EXPECT_EQ(socket.ReadUntil("\r\n\r\n"),
            "HTTP/1.1 101 Switching Protocols\r\nConnection: Upgrade\r\nUpgrade: websocket\r\n"
            "Sec-WebSocket-Accept: s3pPLMBiTxaQ9kYGzzhZRbK+xOo=\r\nSec-WebSocket-Protocol: bearer.reader-1\r\n\r\n");
  auto old = upgrade;
  old.replace(old.find("1.1"), 3, "1.0");
  EXPECT_TRUE(tree.Http().Raw(old).starts_with("HTTP/1.1 400"));
}

TEST_F(Door, AsksEveryRequestOfAKeptConnectionBeforeItsBodyIsAskedFor) {
  const auto head = "POST " + path + " HTTP/1.1\r\nHost: localhost\r\nContent-Type: application/json\r\nContent-Length: 2\r\n";
  const std::string writes = "Authorization: Bearer writer-2\r\n\r\n{}", reads = "Authorization: Bearer reader-1\r\n\r\n{}";
  const auto answers =
      tree.Http().Raw(head + writes + head + "\r\n{}" + head + reads + head + writes + head + "Expect: 100-continue\r\n\r\n");
  EXPECT_EQ(test::Codes(answers), (std::vector<std::string>{"200", "401", "403", "200", "401"}));
}

}  // namespace
}  // namespace zuva::serve
