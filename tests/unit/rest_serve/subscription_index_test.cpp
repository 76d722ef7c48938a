#include "serve/subscription_index.h"

#include <functional>
#include <map>
#include <memory>
#include <new>
#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "tests/support/failing_new.h"
#include "tests/unit/rest_serve/served_tree.h"

namespace zuva::serve {
namespace {

using test::Thing;

/// A client whose socket takes frames only when the test says so.
class Client final : public Subscriber {
 public:
  explicit Client(SubscriptionIndex& index) : index_{index} {}

  Outbox& GetOutbox() override { return outbox_; }
  void Flush() override {
    ++flushes;
    if (cannotFlush) throw std::bad_alloc{};
  }
  void OnLost() override { lost = true; }

  void Subscribe(Server& server, const std::string& path) {
    auto target = ParseTarget(path);
    subscriptions_.push_back(index_.Subscribe(*this, "7", server.Find(target->path), target->query, path));
  }
  void Unsubscribe() { subscriptions_.pop_back(); }
  /// The socket takes all that waits.
  void Send() {
    while (auto frame = outbox_.Pop(SubscriptionIndex::Render)) {
      const test_support::UnfailingNew pause;
      sent_.push_back(std::move(*frame));
    }
  }
  std::vector<nlohmann::json> Messages() {
    Send();
    std::vector<nlohmann::json> messages;
    for (const auto& frame : std::exchange(sent_, {})) {
      messages.push_back(nlohmann::json::parse((frame.prefix ? *frame.prefix : "") + *frame.tail));
    }
    return messages;
  }
  /// What the client believes after all that was sent, by path.
  std::map<std::string, nlohmann::json> View() {
    for (const auto& message : Messages()) {
      const auto& data = message.value("data", nlohmann::json{});
      if (message["event"] == "removed") view_.erase(message["path"].get<std::string>());
      if (data.is_object()) view_[message["path"]] = data;
      for (const auto& element : data.is_array() ? data : nlohmann::json::array()) view_[element["uri"]] = element;
    }
    return view_;
  }
  /// What was sent since, as "event path visible-text".
  std::vector<std::string> Take() {
    std::vector<std::string> lines;
    for (const auto& message : Messages()) {
      EXPECT_EQ(message["subscriptionId"], "7");
      lines.push_back(message.value("event", "") + " " + message.value("path", "") + Shown(message));
    }
    return lines;
  }

  int flushes = 0;
  bool cannotFlush = false, lost = false;

 private:
  static std::string Shown(const nlohmann::json& message) {
    if (!message.contains("data")) return "";
    const auto& data = message["data"];
    if (data.is_object() && data.contains("text")) return " " + data["text"].get<std::string>();
    return data.is_array() ? " " + std::to_string(data.size()) : "";
  }

  SubscriptionIndex& index_;
  Outbox outbox_;
  std::vector<Frame> sent_;
  std::map<std::string, nlohmann::json> view_;
  std::vector<std::unique_ptr<Subscription>> subscriptions_;
};

using Lines = std::vector<std::string>;

class SubscriptionIndexTest : public testing::Test {
 protected:
  SubscriptionIndexTest() {
    queue->Open([this] {
      if (cannotWake) throw std::bad_alloc{};
      ++wakes;
    });
  }
  ~SubscriptionIndexTest() override { queue->Close(); }

  bool cannotWake = false;
  int wakes = 0;
  std::shared_ptr<ChangeQueue> queue = std::make_shared<ChangeQueue>();
  test::TestTree tree{nlohmann::json::object(), queue};
  SubscriptionIndex index{*queue};
  Client client{index};
};

TEST_F(SubscriptionIndexTest, ABurstWakesOnceAndAWaitingChangeGivesWayToTheNewest) {
  const auto a = tree.things->AddThing("a");
  const auto b = tree.things->AddThing("b");
  EXPECT_EQ(wakes, 0) << "nobody listens yet";
  client.Subscribe(*tree.server, "/S/things");
  for (const auto* text : {"1", "2", "3"}) {
    a->Set("text", text);
    b->Set("text", text);
  }
  EXPECT_EQ(wakes, 1);
  index.Drain();
  EXPECT_EQ(client.flushes, 1);
  a->Set("text", "4");  // while the socket is not ready
  index.Drain();
  EXPECT_EQ(client.Take(), (Lines{"snapshot /S/things 2", "changed " + a->Path() + " 4", "changed " + b->Path() + " 3"}));
}

TEST_F(SubscriptionIndexTest, ARemovalDropsTheWaitingChangeOfItsElementOnly) {
  const auto a = tree.things->AddThing("a");
  const auto b = tree.things->AddThing("b");
  client.Subscribe(*tree.server, "/S");
  client.Take();
  a->Set("text", "1");
  index.Drain();
  a->Set("text", "2");
  b->Set("text", "1");
  tree.things->Remove(a->GetUuid());
  index.Drain();
  EXPECT_EQ(client.Take(), (Lines{"changed " + b->Path() + " 1", "removed " + a->Path()}));
}

TEST_F(SubscriptionIndexTest, AnObjectThatComesBackHasAnotherPathAndAHistoryOfItsOwn) {
  const auto a = tree.things->AddThing("a");
  client.Subscribe(*tree.server, "/S/things");
  client.Take();
  const auto before = a->Path();
  a->Set("text", "1");
  tree.things->Remove(a->GetUuid());
  const auto uuid = ara::rest::Uuid::MakeV4();
  a->SetUuid(uuid);
  a->SetUri(ara::rest::Uri::Builder{"/S/things/" + uuid.ToString(), ara::rest::GetDefaultAllocator()}.ToUri());
  tree.things->Add(a);
  a->Set("text", "2");
  index.Drain();
  EXPECT_EQ(client.Take(), (Lines{"removed " + before, "added " + a->Path() + " 1", "changed " + a->Path() + " 2"}));
}

TEST_F(SubscriptionIndexTest, ASnapshotAndTheQueueOverlapWithoutLossOrRepetition) {
  const auto gone = tree.things->AddThing("gone");
  const auto path = gone->Path();
  Client first{index};
  first.Subscribe(*tree.server, "/S/things");
  const auto added = tree.things->AddThing("added");
  added->Set("text", "1");
  tree.things->Remove(gone->GetUuid());
  client.Subscribe(*tree.server, "/S/things");  // while the queue still holds all that
  added->Set("text", "2");
  index.Drain();
  EXPECT_EQ(first.Take(), (Lines{"snapshot /S/things 1", "added " + added->Path(), "changed " + added->Path() + " 2", "removed " + path}));
  EXPECT_EQ(client.Take(), (Lines{"snapshot /S/things 1", "changed " + added->Path() + " 2"}));
}

TEST_F(SubscriptionIndexTest, AFilterTurnsMatchingIntoAddedAndRemoved) {
  const auto a = tree.things->AddThing("a");
  const auto b = tree.things->AddThing("b");
  a->Set("state", "on");
  client.Subscribe(*tree.server, "/S/things?state=on");
  EXPECT_EQ(client.Take(), (Lines{"snapshot /S/things?state=on 1"}));
  const auto set = [&](Thing& thing, const std::string& state, const std::string& text) {
    {
      const ChangeScope scope{thing};
      thing.Set("state", state);
      thing.Set("text", text);
    }
    index.Drain();
  };
  set(*b, "on", "1");   // begins to match
  set(*a, "on", "1");   // goes on
  set(*a, "off", "2");  // ceases, before the change is sent
  set(*a, "off", "3");  // is not seen
  const auto c = tree.things->AddThing("c");
  index.Drain();
  tree.things->Remove(c->GetUuid());  // was never seen
  tree.things->Remove(b->GetUuid());
  index.Drain();
  EXPECT_EQ(client.Take(), (Lines{"added " + b->Path() + " 1", "removed " + a->Path(), "removed " + b->Path()}));
}

TEST_F(SubscriptionIndexTest, AnElementThatCeasesToMatchWhileItsChangeWaitsIsRemovedInItsPlace) {
  const auto a = tree.things->AddThing("a");
  a->Set("state", "on");
  client.Subscribe(*tree.server, "/S/things?state=on");
  client.Take();
  a->Set("text", "1");
  index.Drain();
  a->Set("state", "off");  // not drained yet when the socket is ready
  EXPECT_EQ(client.Take(), (Lines{"removed " + a->Path()}));
  index.Drain();
  EXPECT_EQ(client.Take(), Lines{});
}

TEST_F(SubscriptionIndexTest, AnElementsSubscriberHearsThatElementAlone) {
  const auto a = tree.things->AddThing("a");
  const auto b = tree.things->AddThing("b");
  client.Subscribe(*tree.server, a->Path());
  a->Set("text", "1");
  b->Set("text", "1");
  index.Drain();
  EXPECT_EQ(client.Take(), (Lines{"snapshot " + a->Path(), "changed " + a->Path() + " 1"}));
  tree.things->Remove(a->GetUuid());
  tree.things->AddThing("c");
  index.Drain();
  EXPECT_EQ(client.Take(), (Lines{"removed " + a->Path()}));
}

TEST_F(SubscriptionIndexTest, NothingComesAfterTheEndOfASubscription) {
  const auto a = tree.things->AddThing("a");
  client.Subscribe(*tree.server, "/S/things");
  client.Take();
  a->Set("text", "1");
  index.Drain();
  client.Unsubscribe();
  a->Set("text", "2");
  index.Drain();
  EXPECT_EQ(client.Take(), Lines{});
  EXPECT_EQ(client.GetOutbox().Bytes(), 0U);
}

TEST_F(SubscriptionIndexTest, AFullQueueTellsItsSubscribersThatTheyMissSomething) {
  client.Subscribe(*tree.server, "/S/others");
  const auto a = tree.things->AddThing("a");
  for (std::size_t i = 0; i < ChangeQueue::kLongest; ++i) queue->Removed(tree.things, a, "/S/things/x");
  EXPECT_FALSE(client.lost);
  index.Drain();
  EXPECT_TRUE(client.lost);
}

TEST_F(SubscriptionIndexTest, AWakeUpThatFailsIsTriedAgainWithTheNextChange) {
  const auto a = tree.things->AddThing("a");
  const auto b = tree.things->AddThing("b");
  client.Subscribe(*tree.server, "/S/things");
  cannotWake = true;
  a->Set("text", "1");
  cannotWake = false;
  b->Set("text", "1");
  EXPECT_EQ(wakes, 1);
}

TEST_F(SubscriptionIndexTest, AClientThatCannotSendIsEndedAndTheOthersGoOn) {
  const auto a = tree.things->AddThing("a");
  Client broken{index};
  broken.cannotFlush = true;
  broken.Subscribe(*tree.server, "/S/things");
  client.Subscribe(*tree.server, "/S/things");
  a->Set("text", "1");
  index.Drain();
  EXPECT_TRUE(broken.lost);
  EXPECT_FALSE(client.lost);
  EXPECT_EQ(client.flushes, 1);
}

// Whatever allocation fails, each client ends up with the truth, or hears that it missed something and asks anew.
TEST(WithoutMemory, TheClientsViewStillBecomesTheTree) {
  bool failed = true;
  for (unsigned n = 1; failed; ++n) {
    const auto queue = std::make_shared<ChangeQueue>();
    test::TestTree tree{nlohmann::json::object(), queue};
    SubscriptionIndex index{*queue};
    queue->Open([] { std::make_unique<int>(); });
    const auto a = tree.things->AddThing("a");
    const auto b = tree.things->AddThing("b");
    Client all{index};
    Client some{index};
    all.Subscribe(*tree.server, "/S/things");
    some.Subscribe(*tree.server, "/S/things?state=on");
    all.View();
    some.View();
    const std::function<void()> steps[]{
        [&] { a->Set("text", "1"), b->Set("state", "on"); },
        [&] { tree.things->AddThing("c"); },
        [&] { Client{index}.Subscribe(*tree.server, "/S"); },
        [&] { index.Drain(); },
        [&] { a->Set("state", "on"), tree.things->Remove(b->GetUuid()); },
        [&] { index.Drain(); },
        [&] { all.Send(); },
        [&] { some.Send(); },
    };
    {
      const test_support::FailingNew failing{n};
      for (const auto& step : steps) {
        try {
          step();
        } catch (const std::exception&) {  // bad_alloc, or a null pointer of the tree's own allocator
        }
      }
    }
    failed = test_support::FailingNew::HasFailed();
    index.Drain();
    Client anew{index};
    Client someAnew{index};
    anew.Subscribe(*tree.server, "/S/things");
    someAnew.Subscribe(*tree.server, "/S/things?state=on");
    EXPECT_TRUE(all.lost || all.View() == anew.View()) << "allocation " << n;
    EXPECT_TRUE(some.lost || some.View() == someAnew.View()) << "allocation " << n;
  }
}

}  // namespace
}  // namespace zuva::serve
