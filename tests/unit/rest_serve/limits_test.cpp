#include <sys/resource.h>

#include <future>
#include <memory>
#include <string>
#include <vector>

#include <boost/asio/io_context.hpp>
#include <boost/asio/ip/tcp.hpp>

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
  const auto answer = RawSocket{tree.port}.ReadToEnd();
  EXPECT_TRUE(answer.starts_with("HTTP/1.1 503"));
  for (const auto* field : {"Retry-After: 1", "Date: ", "Connection: close"})
    EXPECT_NE(answer.find("\r\n" + std::string{field}), std::string::npos) << field;
  socket.Close();
  EXPECT_TRUE(test::WaitFor([&] { return tree.Http().Raw(kGet + "\r\n", std::chrono::milliseconds{50}).starts_with("HTTP/1.1 200"); }));
}

TEST(Limits, ASlowRequestEndsWith408AndAnIdleConnectionWithAClose) {
  ServedTree tree{With({{"requestSeconds", 1}, {"idleSeconds", 2}})};
  RawSocket slow{tree.port};
  slow.Send(kGet.substr(0, 20));
  RawSocket idle{tree.port};
  idle.Send(kGet);
  const auto timeout = slow.ReadToEnd();
  EXPECT_TRUE(timeout.starts_with("HTTP/1.1 408"));
  EXPECT_NE(timeout.find("\r\nDate: "), std::string::npos);
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
  RawSocket witness{tree.port};
  witness.Upgrade();
  for (int i = 0; i < 4; ++i) {
    const std::string_view ping{"\x89\0", 2};
    ASSERT_TRUE(witness.ReadUntil(ping).ends_with(ping));  // one falls due for the other too, and cannot be sent
    for (auto* const socket : {&witness, &deaf}) socket->Send(test_support::ClientFrame(0x8A, ""));
  }
  auto stopped = std::async(std::launch::async, [&] { tree.server->Stop(true); });
  EXPECT_EQ(stopped.wait_for(std::chrono::seconds{3}), std::future_status::ready);
}

TEST(Limits, AWebSocketIsClosedAtOnceBeyondEightTimesTheLimitOnly) {
  ServedTree tree{With({{"pendingBytesPerClient", 10'000}})};
  auto socket = tree.Socket();
  socket.Subscribe("/S/things");
  tree.things->AddThing(std::string(39'500, 'x'));  // its type and its name
  const auto added = socket.Receive();
  ASSERT_TRUE(added);
  EXPECT_EQ((*added)["event"], "added");
  tree.things->AddThing(std::string(40'500, 'x'));
  EXPECT_EQ(socket.WaitForClose(), 1013U) << "though it takes all that it gets";
}

TEST(Limits, AChangeThatWaitsCountsSixtyFourBytes) {
  ServedTree tree{With({{"pendingBytesPerClient", 1'000}})};  // 125 changes are eight times that
  std::vector<std::shared_ptr<test::Thing>> things;
  for (int i = 0; i < 130; ++i) things.push_back(tree.things->AddThing("a"));
  const auto held = tree.others->AddThing("held");
  auto gate = std::make_shared<test::Gate>();
  held->SetPreGetCallback([&gate](auto, auto&) {
    gate->Pass();  // on the I/O thread, so that all changes come to it together
    return true;
  });
  const auto closes = [&](std::size_t count) {
    auto socket = tree.Socket();
    for (const auto& thing : things) socket.Send({{"action", "subscribe"}, {"path", thing->Path()}, {"requestId", "1"}});
    for (std::size_t got = 0; got < 2 * things.size(); ++got) EXPECT_TRUE(socket.Receive());
    gate = std::make_shared<test::Gate>();
    auto get = std::async(std::launch::async, [&] { return tree.Http().Get(held->Path()).status; });
    EXPECT_TRUE(gate->WaitForGuests(1));
    for (std::size_t i = 0; i < count; ++i) things[i]->Set("text", std::to_string(count));
    gate->Open();
    EXPECT_EQ(get.get(), 200U);
    for (std::size_t got = 0; got < count; ++got) {
      if (!socket.Receive()) return true;
    }
    return false;
  };
  EXPECT_FALSE(closes(120));
  EXPECT_TRUE(closes(130));
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

TEST(Limits, BothLoopbackListenersServe) {
  const auto address = [](const std::string& text) { return json{{"address", text}, {"port", 0}}; };
  boost::asio::io_context io;
  boost::system::error_code error;
  boost::asio::ip::tcp::acceptor probe{io};
  probe.open(boost::asio::ip::tcp::v6(), error);
  if (!error) probe.bind({boost::asio::ip::address_v6::loopback(), 0}, error);
  if (error) GTEST_SKIP() << "this machine has no ::1: " << error.message();
  ServedTree tree{{{"listen", {address("::1"), address("127.0.0.1")}}}};
  test::HttpClient six{"::1", tree.PortOf("[::1]")};
  EXPECT_EQ(six.Get("/").status, 200U);
  EXPECT_EQ(test::WsClient("::1", tree.PortOf("[::1]")).Ask({{"action", "get"}, {"path", "/"}}).count("data"), 1U);
  EXPECT_EQ(tree.Http().Get("/").status, 200U);
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
