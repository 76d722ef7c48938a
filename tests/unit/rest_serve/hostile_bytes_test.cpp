#include <string>

#include <gtest/gtest.h>

#include "tests/support/raw_socket.h"
#include "tests/unit/rest_serve/served_tree.h"

namespace zuva::serve {
namespace {

using test_support::ClientFrame;
using test_support::RawSocket;

class HostileBytes : public testing::Test {
 protected:
  std::string Status(std::string_view request) {
    const auto answer = tree.Http().Raw(request);
    EXPECT_NE(answer.find("\r\nDate: "), std::string::npos) << answer;
    return answer.size() > 12 ? answer.substr(9, 3) : answer;
  }
  bool StillServes() { return tree.Http().Get("/").status == 200; }

  test::ServedTree tree{{{"limits", {{"headerBytes", 1024}, {"bodyBytes", 100}}}}};
};

TEST_F(HostileBytes, GetAnAnswerAndAClose) {
  const std::string get = "GET / HTTP/1.1\r\n";
  EXPECT_EQ(Status("\x16\x03\x01 hello\r\n\r\n"), "400");
  EXPECT_EQ(Status(get + "Connection: close\r\n\r\n"), "400") << "no Host";
  EXPECT_EQ(Status(get + "Host: localhost\r\nHost: localhost\r\nConnection: close\r\n\r\n"), "400") << "two";
  EXPECT_EQ(Status(get + "Host: localhost\r\nA: " + std::string(2000, 'a')), "431");
  EXPECT_EQ(Status("GET /" + std::string(2000, 'a')), "431");
  EXPECT_EQ(Status("GET / HTTP/2.0\r\n"), "505");
  const auto thing = tree.things->AddThing("writable");
  tree.Guard(*thing, std::make_shared<test::Gate>());
  const auto post = "POST " + thing->Path() + " HTTP/1.1\r\nHost: localhost\r\nContent-Type: application/json\r\n";
  EXPECT_EQ(Status(post + "Content-Length: 99999999999\r\n\r\n"), "413");
  EXPECT_EQ(Status(post + "Transfer-Encoding: chunked\r\n\r\nff\r\n"), "413");
  EXPECT_EQ(Status(post + "Transfer-Encoding: chunked\r\n\r\n1;" + std::string(9000, 'a')), "400");
  EXPECT_TRUE(StillServes());
}

TEST_F(HostileBytes, ACutRequestLeavesNothingBehind) {
  const std::string request =
      "POST /S/things/x HTTP/1.1\r\nHost: localhost\r\nContent-Type: application/json\r\nContent-Length: 2\r\n\r\n{}";
  for (std::size_t size = 0; size < request.size(); size += 7) RawSocket{tree.port}.Send(request.substr(0, size));
  EXPECT_TRUE(StillServes());
}

TEST_F(HostileBytes, BadFramesCloseWithTheCodeThatSaysWhy) {
  struct Row {
    std::string frames;
    unsigned code;
  };
  for (const auto& row : {Row{ClientFrame(0x81, "{\"a\":\"\xff\"}"), 1007},                   // text that is not UTF-8
                          Row{ClientFrame(0x01, "\xe2\x82") + ClientFrame(0x80, "x"), 1007},  // cut in a character
                          Row{ClientFrame(0xF1, "{}"), 1002},                                 // reserved bits
                          Row{ClientFrame(0x83, "{}"), 1002},                                 // reserved operation
                          Row{ClientFrame(0x80, "{}"), 1002},                                 // continues nothing
                          Row{ClientFrame(0x09, "{}"), 1002},                                 // a ping in pieces
                          Row{std::string{"\x81\x02{}", 4}, 1002},                            // no mask
                          Row{ClientFrame(0x82, "{}"), 1003},                                 // binary
                          Row{ClientFrame(0x82, "{}") + ClientFrame(0x01, "{") + ClientFrame(0x89, "") + ClientFrame(0x80, "}"), 1003},
                          Row{ClientFrame(0x82, "{}") + ClientFrame(0x01, "{") + ClientFrame(0x89, "") + ClientFrame(0x73, ""), 1003},
                          Row{ClientFrame(0x01, std::string(60, 'a')) + ClientFrame(0x80, std::string(60, 'a')), 1009}}) {
    RawSocket socket{tree.port};
    socket.Upgrade();
    socket.Send(row.frames);
    const std::string close{'\x88', 2, static_cast<char>(row.code >> 8U), static_cast<char>(row.code & 0xFFU)};
    EXPECT_EQ(socket.ReadUntil(close), close) << row.frames;
  }
  EXPECT_TRUE(StillServes());
}

TEST_F(HostileBytes, NothingMayFollowAnUpgradeBeforeItsAnswer) {
  EXPECT_EQ(Status("GET / HTTP/1.1\r\nHost: localhost\r\nConnection: Upgrade\r\nUpgrade: websocket\r\nSec-WebSocket-Version: 13\r\n"
                   "Sec-WebSocket-Key: dGhlIHNhbXBsZSBub25jZQ==\r\n\r\n" +
                   ClientFrame(0x81, "{}")),
            "400");
}

}  // namespace
}  // namespace zuva::serve
