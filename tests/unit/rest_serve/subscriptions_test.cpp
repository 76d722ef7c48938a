#include <algorithm>
#include <chrono>
#include <map>
#include <memory>
#include <string>
#include <thread>

#include <gtest/gtest.h>

#include "tests/support/raw_socket.h"
#include "tests/unit/rest_serve/served_tree.h"

namespace zuva::serve {
namespace {

using nlohmann::json;
using test::ServedTree;
using test_support::RawSocket;

std::string Event(const std::optional<json>& message) {
  return message ? message->value("event", "") + " " + message->value("path", "") : "nothing";
}

TEST(Subscriptions, SnapshotFirstThenEveryEventInOrder) {
  ServedTree tree;
  const auto before = tree.things->AddThing("before");
  auto socket = tree.Socket();
  const auto snapshot = socket.Subscribe("/S/things");
  EXPECT_EQ(snapshot["data"], tree.Http().Get("/S/things").Json());
  const auto thing = tree.things->AddThing("new");
  EXPECT_EQ(Event(socket.Receive()), "added " + thing->Path());
  {
    const ChangeScope scope{*thing};
    thing->Set("one", "1");
    thing->Set("two", "2");
  }
  const auto changed = socket.Receive();
  EXPECT_EQ(Event(changed), "changed " + thing->Path());
  EXPECT_EQ((*changed)["data"], tree.Http().Get(thing->Path()).Json()) << "the whole element, all writes of the update in one";
  tree.things->Remove(thing->GetUuid());
  const auto removed = socket.Receive();
  EXPECT_EQ(Event(removed), "removed " + thing->Path());
  EXPECT_FALSE(removed->contains("data"));
}

TEST(Subscriptions, AServiceIsAnObjectOfItsResources) {
  ServedTree tree;
  const auto thing = tree.others->AddThing("a");
  auto socket = tree.Socket("/%53");  // an escape that means the same path
  EXPECT_EQ(socket.Subscribe("/S")["data"], (json{{"things", json::array()}, {"others", {tree.Http().Get(thing->Path()).Json()}}}));
  thing->Set("text", "1");
  EXPECT_EQ(Event(socket.Receive()), "changed " + thing->Path());
}

TEST(Subscriptions, AWriteIsTheWritersAnswerAndEverybodysEvent) {
  ServedTree tree;
  const auto thing = tree.things->AddThing("a");
  const auto gate = std::make_shared<test::Gate>();
  gate->Open();
  tree.Guard(*thing, gate);
  auto watcher = tree.Socket();
  watcher.Subscribe(thing->Path());
  const auto answer = tree.Socket().Ask({{"action", "set"}, {"path", thing->Path()}, {"value", {{"text", "new"}}}});
  EXPECT_EQ((*watcher.Receive())["data"], answer["data"]);
}

TEST(Subscriptions, ASubscriberWhoJoinsWhileAllChangesEndsUpWithTheTruth) {
  ServedTree tree;
  std::thread vehicle{[&] {
    for (int i = 0; i < 300; ++i) {
      const auto thing = tree.things->AddThing("a");
      thing->Set("text", std::to_string(i));
      if (tree.things->GetSize() > 4) tree.things->Remove((*tree.things->GetElements().begin())->GetUuid());
    }
  }};
  auto socket = tree.Socket();
  constexpr std::size_t kSubscriptions = 3;
  for (std::size_t i = 0; i < kSubscriptions; ++i) socket.Send({{"action", "subscribe"}, {"path", "/S/things"}, {"requestId", i}});
  using View = std::map<std::string, json>;
  std::map<std::string, View> seen;  // by subscription
  const auto apply = [&](const json& message) {
    if (!message.contains("event")) return;
    auto& mine = seen[message["subscriptionId"]];
    if (message["event"] == "snapshot") {
      for (const auto& element : message["data"]) mine[element["uri"]] = element;
      return;
    }
    const std::string path = message["path"];
    EXPECT_EQ(mine.count(path) > 0, message["event"] != "added") << message;
    if (message["event"] == "removed") {
      mine.erase(path);
    } else {
      mine[path] = message["data"];
    }
  };
  vehicle.join();
  View truth;
  for (const auto& element : tree.Http().Get("/S/things").Json()) truth[element["uri"]] = element;
  EXPECT_TRUE(test::WaitFor([&] {
    while (const auto message = socket.Receive(std::chrono::milliseconds{1})) apply(*message);
    return seen.size() == kSubscriptions && std::all_of(seen.begin(), seen.end(), [&](const auto& mine) { return mine.second == truth; });
  }));
}

class SlowClient : public testing::Test {
 protected:
  SlowClient() {
    slow.Upgrade();
    slow.Send(test_support::ClientFrame(0x81, R"({"action":"subscribe","path":"/S/others","requestId":1})"));
    slow.ReadUntil("snapshot");
    healthy.Subscribe("/S/things");
  }
  /// Makes so many events that no socket's buffers hold them, while the healthy client reads along.
  void AddAndRemove(int count) {
    for (int i = 0; i < count; ++i) {
      tree.others->Remove(tree.others->AddThing(std::string(50'000, 'x'))->GetUuid());
      const auto thing = tree.things->AddThing(std::string(50'000, 'x'));
      ASSERT_EQ(Event(healthy.Receive()), "added " + thing->Path());
      tree.things->Remove(thing->GetUuid());
      ASSERT_EQ(Event(healthy.Receive()), "removed " + thing->Path());
    }
  }

  /// The server keeps the resource as long as somebody subscribes to it, and nobody does but the slow client.
  bool HasEnded() const { return tree.others.use_count() == unsubscribed; }
  /// The slow client is closed for being slow, which shows behind what it had been sent before.
  void ExpectClosed() {
    EXPECT_TRUE(test::WaitFor([&] { return HasEnded(); }));
    const std::string_view close{"\x88\x02\x03\xf5", 4};  // 1013
    EXPECT_TRUE(slow.ReadUntil(close).ends_with(close));
  }

  ServedTree tree{{{"limits", {{"pendingBytesPerClient", 200'000}}}}};
  const long unsubscribed = tree.others.use_count();
  RawSocket slow{tree.port, 65536};
  test::WsClient healthy = tree.Socket();
};

TEST_F(SlowClient, IsClosedWith1013WhileTheOthersNoticeNothing) {
  AddAndRemove(25);
  ExpectClosed();
  AddAndRemove(1);
}

TEST_F(SlowClient, TakingAFrameNowAndThenDoesNotRaiseTheLimit) {
  AddAndRemove(25);
  auto next = std::chrono::steady_clock::now();
  test::WaitFor([&] {
    if (std::chrono::steady_clock::now() >= next) {
      slow.ReadUntil("removed");
      next += std::chrono::milliseconds{100};
    }
    return HasEnded();
  });
  ExpectClosed();
}

TEST_F(SlowClient, HearsOfAnElementThatChangesAllTheTimeOnlyItsLastStates) {
  const auto thing = tree.others->AddThing("a");
  const std::string padding(50'000, 'x');
  for (int i = 1; i <= 1000; ++i) thing->Set("text", padding + std::to_string(i));
  const auto received = slow.ReadUntil("x1000\"");
  EXPECT_TRUE(received.ends_with("x1000\""));
  EXPECT_LT(received.size(), 25'000'000U) << "not all of the 50 MB";
}

}  // namespace
}  // namespace zuva::serve
