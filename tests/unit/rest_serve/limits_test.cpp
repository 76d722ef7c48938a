#include <sys/resource.h>

#include <future>
#include <memory>
#include <string>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

#include "tests/support/raw_socket.h"
#include "tests/unit/rest_serve/served_tree.h"

namespace zuva::serve {
namespace {

using nlohmann::json;
using test::ServedTree;
using test_support::RawSocket;

json With(const json& limits) {
  return {{"limits", limits}};
}

const std::string kGet = "GET /S/others HTTP/1.1\r\nHost: localhost\r\n\r\n";

TEST(Limits, TheLongestIdleConnectionGivesWayToANewOneButNoWebSocketDoes) {
  ServedTree tree{With({{"connections", 3}})};
  auto socket = tree.Socket();
  RawSocket longest{tree.port};
  longest.Send(kGet);
  EXPECT_TRUE(longest.ReadUntil("[]").ends_with("[]"));
  RawSocket recent{tree.port};
  recent.Send(kGet);
  EXPECT_TRUE(recent.ReadUntil("[]").ends_with("[]"));
  RawSocket fresh{tree.port};
  fresh.Send(kGet);
  EXPECT_TRUE(fresh.ReadUntil("[]").ends_with("[]"));
  EXPECT_EQ(longest.ReadToEnd(), "");
  EXPECT_TRUE(longest.HasEnded());
  recent.Send(kGet);
  EXPECT_TRUE(recent.ReadUntil("[]").ends_with("[]"));
  EXPECT_TRUE(socket.Ask({{"action", "get"}, {"path", "/"}}).contains("data"));
}

TEST(Limits, WithoutAnIdleConnectionANewClientIsTurnedAway) {
  ServedTree tree{With({{"connections", 1}})};
  auto socket = tree.Socket();
  EXPECT_TRUE(RawSocket{tree.port}.ReadToEnd().starts_with("HTTP/1.1 503"));
  socket.Close();
  EXPECT_TRUE(test::WaitFor([&] { return tree.Http().Raw(kGet + "\r\n", std::chrono::milliseconds{50}).starts_with("HTTP/1.1 200"); }));
}

TEST(Limits, ASlowRequestEndsWith408AndAnIdleConnectionWithAClose) {
  ServedTree tree{With({{"requestSeconds", 1}, {"idleSeconds", 2}})};
  RawSocket slow{tree.port};
  slow.Send(kGet.substr(0, 20));
  RawSocket idle{tree.port};
  idle.Send(kGet);
  EXPECT_TRUE(slow.ReadToEnd().starts_with("HTTP/1.1 408"));
  EXPECT_TRUE(idle.ReadToEnd().ends_with("[]"));
  EXPECT_TRUE(idle.HasEnded());
}

TEST(Limits, AWebSocketThatAnswersPingsLivesOnAndOneThatDoesNotIsDropped) {
  ServedTree tree{With({{"idleSeconds", 1}})};
  auto alive = tree.Socket();
  RawSocket silent{tree.port};
  silent.Upgrade();
  auto end = std::async(std::launch::async, [&] { return silent.ReadToEnd(); });
  while (end.wait_for(std::chrono::seconds{0}) != std::future_status::ready) EXPECT_FALSE(alive.Receive(std::chrono::milliseconds{10}));
  const auto heard = test_support::Frames(end.get());
  ASSERT_EQ(heard.size(), 1U);
  EXPECT_EQ(heard[0].operation, 9) << "a ping";
  EXPECT_TRUE(silent.HasEnded());
  EXPECT_TRUE(alive.Ask({{"action", "get"}, {"path", "/"}}).contains("data"));
}

TEST(Limits, AWebSocketThatSendsButDoesNotReadIsPingedOnceAtATimeAndDoesNotOutliveTheServer) {
  ServedTree tree{With({{"idleSeconds", 1}, {"pendingBytesPerClient", 64 << 20}})};
  tree.things->AddThing("big")->Set("text", std::string(256U << 10U, 'x'));
  RawSocket deaf{tree.port, 4096};
  deaf.Upgrade();
  for (int i = 0; i < 20; ++i) deaf.Send(test_support::ClientFrame(0x81, R"({"action":"get","path":"/S/things","requestId":1})"));
  for (int i = 0; i < 4; ++i) {
    std::this_thread::sleep_for(std::chrono::milliseconds{700});  // a ping falls due, and cannot be sent
    deaf.Send(test_support::ClientFrame(0x81, R"({"action":"get","path":"/","requestId":1})"));
  }
  auto stopped = std::async(std::launch::async, [&] { tree.server->Stop(true); });
  EXPECT_EQ(stopped.wait_for(std::chrono::seconds{5}), std::future_status::ready);
}

TEST(Limits, AnAnswerThatIsNotTakenEndsWithAClose) {
  ServedTree tree{With({{"idleSeconds", 1}})};
  constexpr std::size_t kAnswer = 256U << 10U;
  constexpr int kAnswers = 32;  // together beyond what the system's own buffers take
  tree.things->AddThing("big")->Set("text", std::string(kAnswer, 'x'));
  RawSocket lazy{tree.port, 4096};
  for (int i = 0; i < kAnswers; ++i) lazy.Send("GET /S/things HTTP/1.1\r\nHost: localhost\r\n\r\n");
  EXPECT_FALSE(lazy.ReadUntil("\r\n\r\n").empty());
  auto http = tree.Http();
  EXPECT_EQ(http.Get("/S/others").status, 200U) << "the others notice nothing";
  RawSocket watch{tree.port};  // closed as idle a little later than the other one
  EXPECT_EQ(watch.ReadToEnd(), "");
  EXPECT_LT(lazy.ReadToEnd().size(), kAnswers * kAnswer);
  EXPECT_TRUE(lazy.HasEnded());
}

TEST(Limits, AMuteResourceLeavesTheOthersTheirThreadsAndRefusesItsOwnAfterASecond) {
  ServedTree tree{With({{"queuedRequests", 1}})};
  const auto gate = std::make_shared<test::Gate>();
  const auto open = std::make_shared<test::Gate>();
  open->Open();
  const auto mute = tree.things->AddThing("mute");
  const auto other = tree.others->AddThing("other");
  tree.Guard(*mute, gate);
  tree.Guard(*other, open);
  const auto post = [&] { return tree.Http().Post(mute->Path(), "{}"); };
  std::vector<std::future<test_support::HttpResponse>> written;
  for (int i = 0; i < 2; ++i) written.push_back(std::async(std::launch::async, post));
  ASSERT_TRUE(gate->WaitForGuests(2));
  EXPECT_EQ(tree.Http().Post(other->Path(), "{}").status, 200U);
  EXPECT_EQ(tree.Http().Get(mute->Path()).status, 200U);
  // Of two more one waits for a second, and the other finds the queue full.
  const auto began = std::chrono::steady_clock::now();
  auto third = std::async(std::launch::async, post);
  for (const auto& refused : {post(), third.get()}) {
    EXPECT_EQ(refused.status, 503U);
    EXPECT_EQ(refused.headers.at("retry-after"), "1");
  }
  EXPECT_GT(std::chrono::steady_clock::now() - began, std::chrono::milliseconds{900});
  EXPECT_EQ(gate->Guests(), 2U) << "what is refused is never run";
  gate->Open();
  for (auto& response : written) EXPECT_EQ(response.get().status, 200U);
}

TEST(Limits, AListenerThatCannotBindIsAWarningUnlessNoneCan) {
  ServedTree tree;
  const auto address = [](const std::string& text, std::uint16_t port) { return json{{"address", text}, {"port", port}}; };
  ServedTree second{{{"listen", {address("127.0.0.1", tree.port), address("127.0.0.1", 0)}}}};
  EXPECT_TRUE(second.Logged("Cannot listen on 127.0.0.1 port " + std::to_string(tree.port)));
  EXPECT_EQ(second.Http().Get("/").status, 200U);
  const json taken{{"listen", {address("127.0.0.1", tree.port)}}};
  EXPECT_THROW(ServedTree{taken}, std::runtime_error);
}

TEST(Limits, TheLimitOfOpenFilesIsRaisedForTheConnections) {
  rlimit low{};
  ASSERT_EQ(getrlimit(RLIMIT_NOFILE, &low), 0);
  low.rlim_cur = 100;
  ASSERT_EQ(setrlimit(RLIMIT_NOFILE, &low), 0);
  const ServedTree tree{With({{"connections", 200}})};
  rlimit now{};
  getrlimit(RLIMIT_NOFILE, &now);
  EXPECT_GE(now.rlim_cur, 200U);
}

}  // namespace
}  // namespace zuva::serve
