#include <memory>
#include <string>

#include <gtest/gtest.h>

#include "tests/support/raw_socket.h"
#include "tests/unit/rest_serve/served_tree.h"

namespace zuva::serve {
namespace {

using test_support::Headers;
using test_support::RawSocket;

struct Row {
  std::string name, method, target, body;
  Headers headers;
  unsigned status = 0;
  std::string detail{};  ///< of a problem; empty: anything
  Headers expected{};    ///< fields of the answer
};

class Requests : public testing::TestWithParam<Row> {
 protected:
  Requests() {
    const auto thing = tree.things->AddThing("plain");
    const auto writable = tree.things->AddThing("writable");
    gate->Open();
    tree.Guard(*writable, gate);
    plain = thing->Path();
    writablePath = writable->Path();
  }

  /// "<plain>" and "<writable>" stand for the paths of the two elements, "<tag>" for the entity tag of the latter.
  std::string Filled(std::string text) {
    const auto fill = [&text](std::string_view name, const std::string& value) {
      if (const auto at = text.find(name); at != std::string::npos) text.replace(at, name.size(), value);
    };
    fill("<plain>", plain);
    fill("<writable>", writablePath);
    if (text.find("<tag>") != std::string::npos) fill("<tag>", tree.Http().Get(writablePath).headers.at("etag"));
    return text;
  }

  std::shared_ptr<test::Gate> gate = std::make_shared<test::Gate>();
  test::ServedTree tree{{{"allowedOrigins", {"https://app.example"}}, {"allowedHosts", {"car.local"}}, {"documentRoot", "/www"}},
                        {{"/www/a.txt", "a"}}};
  std::string plain, writablePath;
};

TEST_P(Requests, AreAnswered) {
  const auto& row = GetParam();
  auto headers = row.headers;
  for (auto& [name, value] : headers) value = Filled(value);
  const auto response = tree.Http().Request(row.method, Filled(row.target), row.body, headers);
  EXPECT_EQ(response.status, row.status) << response.body;
  EXPECT_EQ(response.headers.count("date"), 1U);
  EXPECT_TRUE(row.status != 412 || gate->Guests() == 0) << "the application is not asked";
  for (const auto& [name, value] : row.expected) {
    const auto found = response.headers.find(name);
    EXPECT_EQ(found == response.headers.end() ? "" : found->second, value) << name;
  }
  if (row.method == "HEAD" || row.status == 204 || row.status == 304) {
    EXPECT_TRUE(response.body.empty());
  } else if (row.status != 200) {
    const auto problem = response.Json();
    EXPECT_EQ(response.headers.at("content-type"), row.status < 400 ? "application/json" : "application/problem+json");
    EXPECT_EQ(problem.value("status", 0U), row.status);
    EXPECT_EQ(row.detail.empty() ? "" : problem.value("detail", ""), row.detail);
  }
}

const Headers kText{{"Content-Type", "text/plain"}};
const Headers kCharset{{"Content-Type", "Application/JSON; charset=utf-8"}};
const Headers kEvil{{"Origin", "http://evil.example"}};
const Headers kApp{{"Origin", "https://app.example"}};
const Headers kSame{{"Host", "localhost"}, {"Origin", "http://localhost"}};
const Headers kEvilAsks{{"Origin", "http://evil.example"}, {"Access-Control-Request-Method", "POST"}};
const Headers kAppAsks{{"Origin", "https://app.example"}, {"Access-Control-Request-Method", "POST"}};
const Headers kOldSocket{{"Connection", "Upgrade"}, {"Upgrade", "websocket"}, {"Sec-WebSocket-Version", "8"}};
Headers Socket(const std::string& key, Headers more = {}) {
  for (const auto& [name, value] :
       {std::pair{"Connection", "Upgrade"}, {"Upgrade", "websocket"}, {"Sec-WebSocket-Version", "13"}, {"Sec-WebSocket-Key", key.c_str()}})
    more.emplace_back(name, value);
  return more;
}
Headers IfMatch(const std::string& tags) {
  return {{"If-Match", tags}};
}
Headers IfNoneMatch(const std::string& tags) {
  return {{"If-None-Match", tags}};
}
constexpr const char* kKey = "dGhlIHNhbXBsZSBub25jZQ==";
const Headers kStaleText{{"If-Match", "\"x\""}, {"Content-Type", "text/plain"}};
const Headers kBothFail{{"If-Match", "\"x\""}, {"If-None-Match", "<tag>"}};

const Headers kReads{{"allow", "GET, HEAD"}};
const Headers kWrites{{"allow", "GET, HEAD, POST"}, {"access-control-allow-methods", ""}};
const Headers kNotShared{{"access-control-allow-origin", ""}, {"access-control-allow-methods", ""}, {"vary", "Origin"}};
const Headers kUpgrade{{"connection", "Upgrade"}, {"upgrade", "websocket"}, {"sec-websocket-version", "13"}};
const Headers kCached{{"cache-control", "no-cache"}};
const Headers kShared{{"access-control-allow-origin", "https://app.example"}};
const Headers kMayPost{{"access-control-allow-origin", "https://app.example"},
                       {"access-control-allow-methods", "POST"},
                       {"access-control-allow-headers", "content-type"}};
const Headers kEmptyArray{{"content-length", "2"}, {"content-type", "application/json"}};

INSTANTIATE_TEST_SUITE_P(
    Http, Requests,
    testing::Values(
        Row{"Root", "GET", "/", "", {}, 200}, Row{"HeadHasTheSameHead", "HEAD", "/S/others", "", {}, 200, "", kEmptyArray},
        Row{"AbsoluteForm", "GET", "HTTP://localhost:80/S/things?type=plain", "", {{"Host", "evil.example"}}, 200},
        Row{"AbsoluteWithoutPath", "GET", "http://car.local", "", {}, 200},
        Row{"AbsoluteForeign", "GET", "http://evil.example/", "", {}, 421},
        Row{"AbsoluteOfAnotherScheme", "GET", "https://localhost/", "", {}, 400}, Row{"AbsoluteNowhere", "GET", "http:///S", "", {}, 400},
        Row{"AbsoluteWithUser", "GET", "http://a@localhost/", "", {}, 400},
        Row{"AbsoluteBadPort", "GET", "http://localhost:8x/", "", {}, 400},
        Row{"AbsoluteWithBadHost", "GET", "http://localhost/", "", {{"Host", "a b"}}, 400},
        Row{"AbsoluteOrigin", "POST", "http://car.local<writable>", "{}", {{"Host", "localhost"}, {"Origin", "http://localhost"}}, 403},
        Row{"BadHost", "GET", "/", "", {{"Host", "%zz"}}, 400}, Row{"Fragment", "GET", "/S#things", "", {}, 400},
        Row{"GetMatch", "GET", "<writable>", "", IfMatch("\"x\", <tag>"), 200},
        Row{"GetNoMatch", "GET", "<writable>", "", IfMatch("\"x\""), 412},
        Row{"GetWeakMatch", "GET", "<writable>", "", IfMatch("W/<tag>"), 412}, Row{"GetAny", "GET", "<writable>", "", IfMatch("*"), 200},
        Row{"GetEmptyMatch", "GET", "<writable>", "", IfMatch(""), 412}, Row{"GetBothFail", "GET", "<writable>", "", kBothFail, 412},
        Row{"GetWeakNoneMatch", "GET", "<writable>", "", IfNoneMatch("W/<tag>"), 304},
        Row{"HeadNone", "HEAD", "/S", "", IfNoneMatch("*"), 304}, Row{"GetNowhereMatch", "GET", "/T", "", IfMatch("\"x\""), 404},
        Row{"FileMatch", "GET", "/a.txt", "", IfMatch("\"x\""), 412},
        Row{"FileNoneMatch", "GET", "/a.txt", "", IfNoneMatch("*"), 304, "", kCached},
        Row{"File", "GET", "/a.txt", "", {}, 200, "", kCached}, Row{"PostMatch", "POST", "<writable>", "{}", IfMatch("<tag>"), 200},
        Row{"PostStale", "POST", "<writable>", "{}", IfMatch("\"x\""), 412},
        Row{"PostWeak", "POST", "<writable>", "{}", IfMatch("W/<tag>"), 412},
        Row{"PostNone", "POST", "<writable>", "{}", IfNoneMatch("*"), 412},
        Row{"PostNoneOther", "POST", "<writable>", "{}", IfNoneMatch("\"x\""), 200},
        Row{"PostNoneWeak", "POST", "<writable>", "{}", IfNoneMatch("W/<tag>"), 412},
        Row{"PostStaleNoJson", "POST", "<writable>", "{", IfMatch("\"x\""), 400},
        Row{"PostStaleText", "POST", "<writable>", "{}", kStaleText, 415},
        Row{"PostStaleReadOnly", "POST", "<plain>", "{}", IfMatch("\"x\""), 405},
        Row{"UnknownService", "GET", "/T", "", {}, 404, "Not Found"}, Row{"TrailingSlash", "GET", "/S/things/", "", {}, 404},
        Row{"EmptySegment", "GET", "/S//things", "", {}, 404}, Row{"BadEscape", "GET", "/S/things?a=%zz", "", {}, 400},
        Row{"Put", "PUT", "<writable>", "{}", {}, 405, "", kWrites}, Row{"OtherMethod", "BREW", "/S", "", {}, 405, "", kReads},
        Row{"PutNowhere", "PUT", "/T", "", {}, 404},
        Row{"PostToResource", "POST", "/S/things", "{}", {}, 405, "Method Not Allowed", kReads},
        Row{"PostWithoutCallback", "POST", "<plain>", "{}", {}, 405, "", kReads}, Row{"PostNowhere", "POST", "/S/x/y", "{}", {}, 404},
        Row{"PostOtherType", "POST", "<writable>", "{}", kText, 415}, Row{"PostCharset", "POST", "<writable>", "{}", kCharset, 200},
        Row{"PostNoJson", "POST", "<writable>", "{", {}, 400}, Row{"PostEmpty", "POST", "<writable>", "", {}, 400},
        Row{"PostNoObject", "POST", "<writable>", "[]", {}, 400}, Row{"PostTwice", "POST", "<writable>", R"({"a":1,"a":1})", {}, 400},
        Row{"PostRefused", "POST", "<writable>", R"({"refuse":409})", {}, 409, "refused"},
        Row{"PostAccepted", "POST", "<writable>", R"({"refuse":202})", {}, 202, "refused"},
        Row{"PostImpossibleCode", "POST", "<writable>", R"({"refuse":42})", {}, 500},
        Row{"PostThrows", "POST", "<writable>", R"({"throw":1})", {}, 500, "Internal Server Error"},
        Row{"ForeignHost", "GET", "/", "", {{"Host", "evil.example"}}, 421}, Row{"EmptyHost", "GET", "/", "", {{"Host", ""}}, 421},
        Row{"AllowedHost", "GET", "/", "", {{"Host", "car.local"}}, 200}, Row{"ForeignOrigin", "POST", "<writable>", "{}", kEvil, 403},
        Row{"ForeignMayRead", "GET", "/", "", kEvil, 200, "", kNotShared}, Row{"SameOrigin", "POST", "<writable>", "{}", kSame, 200},
        Row{"Listed", "POST", "<writable>", "{}", kApp, 200, "", kShared},
        Row{"Options", "OPTIONS", "<writable>", "", {}, 204, "", kWrites}, Row{"OptionsOfAll", "OPTIONS", "*", "", {}, 204},
        Row{"OptionsNowhere", "OPTIONS", "/T", "", {}, 404}, Row{"Preflight", "OPTIONS", "<writable>", "", kAppAsks, 204, "", kMayPost},
        Row{"ForeignPreflight", "OPTIONS", "<writable>", "", kEvilAsks, 204, "", kNotShared},
        Row{"OldWebSocket", "GET", "/S", "", kOldSocket, 426, "", kUpgrade}, Row{"WebSocketWithoutKey", "GET", "/S", "", Socket(""), 400},
        Row{"WebSocketWithBadKey", "GET", "/S", "", Socket("dGhlIHNhbXBsZSBub25j*Q=="), 400},
        Row{"WebSocketWithLongKey", "GET", "/S", "", Socket("dGhlIHNhbXBsZSBub25jZQA="), 400},
        Row{"WebSocketOfForeignOrigin", "GET", "/", "", Socket(kKey, kEvil), 403},
        Row{"WebSocketOfForeignHost", "GET", "/", "", Socket(kKey, {{"Host", "evil.example"}}), 421},
        Row{"WebSocketNowhere", "GET", "/T", "", Socket(kKey), 404},
        Row{"NoWebSocketAtAResource", "GET", "/S/things", "", Socket(kKey), 200}),
    [](const auto& parameter) { return parameter.param.name; });

class Writable : public testing::Test {
 protected:
  Writable() { tree.Guard(*thing, gate); }
  std::string Post(const std::string& fields, const std::string& body) const {
    return "POST " + thing->Path() +
           " HTTP/1.1\r\nHost: localhost\r\nContent-Type: application/json\r\nContent-Length: " + std::to_string(body.size()) + "\r\n" +
           fields + "\r\n" + body;
  }

  test::ServedTree tree;
  std::shared_ptr<test::Thing> thing = tree.things->AddThing("a");
  std::shared_ptr<test::Gate> gate = std::make_shared<test::Gate>();
};

TEST_F(Writable, APostIsSeenByTheNextGetAndTellsTheElementAndItsTag) {
  gate->Open();
  auto http = tree.Http();
  const auto before = http.Get("/S/things").headers.at("etag");
  const auto answer = http.Post(thing->Path(), R"({"text":"new","id":"mine"})");
  EXPECT_EQ(answer.Json()["text"], "new");
  EXPECT_EQ(answer.Json()["id"], thing->GetUuid().ToString());
  const auto get = http.Get(thing->Path());
  EXPECT_EQ(get.body, answer.body);
  EXPECT_EQ(get.headers.at("etag"), answer.headers.at("etag"));
  EXPECT_EQ(http.Get("/S/things", {{"If-None-Match", before}}).Json()[0]["text"], "new");
}

TEST_F(Writable, OfTwoWritersWithOneTagOnePasses) {
  const auto condition = "If-Match: " + tree.Http().Get(thing->Path()).headers.at("etag") + "\r\n";
  RawSocket first{tree.port}, second{tree.port}, unconditional{tree.port};
  first.Send(Post(condition, R"({"text":"1"})"));
  ASSERT_TRUE(gate->WaitForGuests(1));
  second.Send(Post(condition, R"({"text":"2"})"));
  tree.Http().Get("/");  // the server has seen the second one
  unconditional.Send(Post("", "{}"));
  ASSERT_TRUE(gate->WaitForGuests(2)) << "waits for nobody";
  gate->Open();
  EXPECT_TRUE(first.ReadUntil("\r\n").ends_with("200 OK\r\n"));
  EXPECT_TRUE(second.ReadUntil("\r\n").ends_with("412 Precondition Failed\r\n"));
  EXPECT_EQ(tree.Http().Get(thing->Path()).Json()["text"], "1");
  EXPECT_EQ(gate->Guests(), 2U);
}

TEST_F(Writable, WhatTheHeadDecidesIsAnsweredWithoutTheBody) {
  const auto json = "Content-Type: application/json\r\n";
  const std::string host = "Host: localhost\r\n";
  struct Refused {
    std::string target, fields, status;
  };
  for (const auto& [target, fields, status] :
       {Refused{"/T", host + json, "404"}, Refused{"/S", host + json, "405"}, Refused{thing->Path(), host, "415"},
        Refused{thing->Path(), "Host: evil.example\r\n", "421"}, Refused{thing->Path(), "Host: a b\r\n", "400"},
        Refused{thing->Path(), json, "400"}, Refused{thing->Path(), host + json + "Origin: http://evil.example\r\n", "403"}}) {
    const auto head = "POST " + target + " HTTP/1.1\r\n" + fields;
    RawSocket waits{tree.port};
    waits.Send(head + "Expect: 100-continue\r\nContent-Length: 2\r\n\r\n");
    EXPECT_EQ(test::Codes(waits.ReadToEnd()), std::vector{status}) << head;
    RawSocket sends{tree.port};
    sends.Send(head + "Transfer-Encoding: chunked\r\n\r\n");
    EXPECT_EQ(test::Codes(sends.ReadUntil("\r\n")), std::vector{status}) << head;
    sends.Send("2\r\n{}\r\n0\r\n\r\nGET /S/things HTTP/1.1\r\nHost: localhost\r\n\r\n");
    EXPECT_EQ(test::Codes(sends.ReadUntil("200 OK")), std::vector<std::string>{"200"}) << "the body is dropped, the connection kept";
    RawSocket floods{tree.port};
    floods.Send(head + "Transfer-Encoding: chunked\r\n\r\nffffff\r\n" + std::string(100'000, ' '));
    EXPECT_EQ(test::Codes(floods.ReadToEnd()), std::vector{status});
    EXPECT_TRUE(floods.HasEnded());
    RawSocket announces{tree.port};
    announces.Send(head + "Content-Length: 100000\r\n\r\n");
    EXPECT_EQ(test::Codes(announces.ReadToEnd()), std::vector{status});
  }
  gate->Open();
  RawSocket accepted{tree.port};
  auto post = Post("Expect: 100-continue\r\n", "{}");
  accepted.Send(std::string_view{post}.substr(0, post.size() - 2));
  EXPECT_EQ(accepted.ReadUntil("\r\n\r\n"), "HTTP/1.1 100 Continue\r\n\r\n");
  accepted.Send("{}");
  EXPECT_TRUE(accepted.ReadUntil("\r\n").ends_with("200 OK\r\n"));
  post.replace(post.find("HTTP/1.1"), 8, "HTTP/1.0");
  EXPECT_EQ(test::Codes(tree.Http().Raw(post)), std::vector<std::string>{"200"}) << "HTTP/1.0 knows no 100";
}

TEST(Http, EveryRequestOfAKeptConnectionIsAskedForItsHost) {
  test::ServedTree tree;
  RawSocket socket{tree.port};
  std::string codes;
  for (const auto* host : {"localhost", "evil.example", "localhost", "%zz", "127.0.0.1"}) {
    socket.Send("HEAD / HTTP/1.1\r\nHost: " + std::string{host} + "\r\n\r\n");
    codes += test::Codes(socket.ReadUntil("\r\n\r\n")).at(0) + ' ';
  }
  EXPECT_EQ(codes, "200 421 200 400 200 ");
}

TEST_F(Writable, PipelinedRequestsAreAnsweredOneAfterAnotherInOrder) {
  gate->Open();
  const std::string host = "Host: localhost\r\n";
  std::string requests;
  for (int i = 0; i < 200; ++i) requests += "GET /S/others HTTP/1.1\r\n" + host + "\r\n";
  requests += Post("", R"({"text":"new"})") + "GET " + thing->Path() + " HTTP/1.1\r\n" + host + "\r\n";
  requests += "GET /nowhere HTTP/1.0\r\n" + host + "\r\n";
  const auto answers = tree.Http().Raw(requests);
  const auto codes = test::Codes(answers);
  ASSERT_EQ(codes.size(), 203U);
  EXPECT_EQ(codes.back(), "404");
  const auto get = answers.rfind("HTTP/1.1 200");
  EXPECT_NE(answers.find("\"text\":\"new\"", get), std::string::npos) << "the read came after the write";
  EXPECT_NE(answers.find("Connection: close", get), std::string::npos) << "HTTP/1.0 closes";
}

TEST(Http, TheRootListsWhatIsAnnounced) {
  test::ServedTree tree;
  auto http = tree.Http();
  const auto names = [&] { return http.Get("/").Json()["services"].size(); };
  EXPECT_EQ(names(), 1U);
  const auto service = *tree.server->GetServices().begin();
  service->Deregister();
  EXPECT_EQ(names(), 0U);
  service->Register({});
  EXPECT_EQ(names(), 1U);
}

}  // namespace
}  // namespace zuva::serve
