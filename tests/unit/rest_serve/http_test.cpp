#include <memory>
#include <string>

#include <gtest/gtest.h>

#include "tests/unit/rest_serve/served_tree.h"

namespace zuva::serve {
namespace {

using nlohmann::json;
using test_support::Headers;

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

  /// "<plain>" and "<writable>" stand for the paths of the two elements.
  std::string Filled(std::string text) const {
    for (const auto& [name, path] : {std::pair{std::string{"<plain>"}, plain}, std::pair{std::string{"<writable>"}, writablePath}}) {
      if (const auto at = text.find(name); at != std::string::npos) text.replace(at, name.size(), path);
    }
    return text;
  }

  std::shared_ptr<test::Gate> gate = std::make_shared<test::Gate>();
  test::ServedTree tree{{{"allowedOrigins", {"https://app.example"}}, {"allowedHosts", {"car.local"}}}};
  std::string plain, writablePath;
};

TEST_P(Requests, AreAnswered) {
  const auto& row = GetParam();
  const auto response = tree.Http().Request(row.method, Filled(row.target), row.body, row.headers);
  EXPECT_EQ(response.status, row.status) << response.body;
  for (const auto& [name, value] : row.expected) {
    const auto found = response.headers.find(name);
    EXPECT_EQ(found == response.headers.end() ? "" : found->second, value) << name;
  }
  if (row.method == "HEAD" || row.status == 204) {
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
const Headers kKeyless{{"Connection", "Upgrade"}, {"Upgrade", "websocket"}, {"Sec-WebSocket-Version", "13"}};

const Headers kReads{{"allow", "GET, HEAD"}};
const Headers kWrites{{"allow", "GET, HEAD, POST"}, {"access-control-allow-methods", ""}};
const Headers kNotShared{{"access-control-allow-origin", ""}, {"access-control-allow-methods", ""}, {"vary", "Origin"}};
const Headers kShared{{"access-control-allow-origin", "https://app.example"}};
const Headers kMayPost{{"access-control-allow-origin", "https://app.example"},
                       {"access-control-allow-methods", "POST"},
                       {"access-control-allow-headers", "content-type"}};
const Headers kEmptyArray{{"content-length", "2"}, {"content-type", "application/json"}};

INSTANTIATE_TEST_SUITE_P(
    Http, Requests,
    testing::Values(
        Row{"Root", "GET", "/", "", {}, 200}, Row{"HeadHasTheSameHead", "HEAD", "/S/others", "", {}, 200, "", kEmptyArray},
        Row{"AbsoluteForm", "GET", "http://localhost/S/things?type=plain", "", {}, 200},
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
        Row{"OldWebSocket", "GET", "/S", "", kOldSocket, 426}, Row{"WebSocketWithoutKey", "GET", "/S", "", kKeyless, 400},
        Row{"NoWebSocketAtAResource", "GET", "/S/things", "", kKeyless, 200}),
    [](const auto& parameter) { return parameter.param.name; });

TEST(Http, AnEntityTagSparesTheClientWhatItHas) {
  test::ServedTree tree;
  const auto thing = tree.things->AddThing("a");
  auto http = tree.Http();
  const auto tag = http.Get("/S/things").headers.at("etag");
  const auto unchanged = http.Get("/S/things", {{"If-None-Match", "\"other\", W/" + tag}});
  EXPECT_EQ(unchanged.status, 304U);
  EXPECT_EQ(unchanged.headers.at("etag"), tag);
  thing->Set("text", "1");
  const auto fresh = http.Get("/S/things", {{"If-None-Match", tag}});
  EXPECT_EQ(fresh.status, 200U);
  EXPECT_NE(fresh.headers.at("etag"), tag);
  EXPECT_EQ(fresh.Json()[0]["text"], "1");
}

TEST(Http, APostIsSeenByTheNextGetAndTellsTheElement) {
  test::ServedTree tree;
  const auto thing = tree.things->AddThing("a");
  const auto gate = std::make_shared<test::Gate>();
  gate->Open();
  tree.Guard(*thing, gate);
  auto http = tree.Http();
  const auto answer = http.Post(thing->Path(), R"({"text":"new","id":"mine"})");
  EXPECT_EQ(answer.Json()["text"], "new");
  EXPECT_EQ(answer.Json()["id"], thing->GetUuid().ToString());
  EXPECT_EQ(http.Get(thing->Path()).body, answer.body);
}

TEST(Http, PipelinedRequestsAreAnsweredOneAfterAnotherInOrder) {
  test::ServedTree tree;
  const auto thing = tree.things->AddThing("a");
  const auto gate = std::make_shared<test::Gate>();
  gate->Open();
  tree.Guard(*thing, gate);
  const std::string host = "Host: localhost\r\n";
  std::string requests;
  for (int i = 0; i < 200; ++i) requests += "GET /S/others HTTP/1.1\r\n" + host + "\r\n";
  requests +=
      "POST " + thing->Path() + " HTTP/1.1\r\n" + host + "Content-Type: application/json\r\nContent-Length: 14\r\n\r\n{\"text\":\"new\"}";
  requests += "GET " + thing->Path() + " HTTP/1.1\r\n" + host + "\r\n";
  requests += "GET /nowhere HTTP/1.0\r\n" + host + "\r\n";
  const auto answers = tree.Http().Raw(requests);
  std::vector<std::string> codes;
  for (auto at = answers.find("HTTP/1.1 "); at != std::string::npos; at = answers.find("HTTP/1.1 ", at + 1))
    codes.push_back(answers.substr(at + 9, 3));
  ASSERT_EQ(codes.size(), 203U);
  EXPECT_EQ(codes.back(), "404");
  const auto get = answers.rfind("HTTP/1.1 200");
  EXPECT_NE(answers.find("\"text\":\"new\"", get), std::string::npos) << "the read came after the write";
  EXPECT_NE(answers.find("Connection: close", get), std::string::npos) << "HTTP/1.0 closes";
}

TEST(Http, AClientThatWaitsForContinueIsToldTo) {
  test::ServedTree tree;
  const auto answer =
      tree.Http().Raw("POST /S HTTP/1.1\r\nHost: localhost\r\nExpect: 100-continue\r\nContent-Length: 2\r\nConnection: close\r\n\r\n",
                      std::chrono::milliseconds{300});
  EXPECT_EQ(answer, "HTTP/1.1 100 Continue\r\n\r\n");
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
