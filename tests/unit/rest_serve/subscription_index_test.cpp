#include "serve/subscription_index.h"

#include <memory>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "tests/unit/rest_serve/served_tree.h"

namespace zuva::serve {
namespace {

using test::Thing;

/// A client whose socket takes frames only when the test says so.
class Client final : public Subscriber {
 public:
  explicit Client(SubscriptionIndex& index) : index_{index} {}
  ~Client() override {
    for (const auto& subscription : subscriptions_) index_.End(*subscription);
  }

  Outbox& GetOutbox() override { return outbox_; }
  void Flush() override { ++flushes; }
  void OnLost() override { lost = true; }

  void Subscribe(Server& server, const std::string& path) {
    auto target = ParseTarget(path);
    subscriptions_.push_back(index_.Subscribe(*this, "7", server.Find(target->path), target->query, path));
  }
  void Unsubscribe() {
    index_.End(*subscriptions_.back());
    subscriptions_.pop_back();
  }
  /// What was sent since, as "event path visible-text".
  std::vector<std::string> Take() {
    std::vector<std::string> lines;
    while (const auto frame = outbox_.Pop(SubscriptionIndex::Render)) {
      const auto message = nlohmann::json::parse((frame->prefix ? *frame->prefix : "") + *frame->tail);
      EXPECT_EQ(message["subscriptionId"], "7");
      lines.push_back(message.value("event", "") + " " + message.value("path", "") + Shown(message));
    }
    return lines;
  }

  int flushes = 0;
  bool lost = false;

 private:
  static std::string Shown(const nlohmann::json& message) {
    if (!message.contains("data")) return "";
    const auto& data = message["data"];
    if (data.is_object() && data.contains("text")) return " " + data["text"].get<std::string>();
    return data.is_array() ? " " + std::to_string(data.size()) : "";
  }

  SubscriptionIndex& index_;
  Outbox outbox_;
  std::vector<std::unique_ptr<Subscription>> subscriptions_;
};

using Lines = std::vector<std::string>;

class SubscriptionIndexTest : public testing::Test {
 protected:
  SubscriptionIndexTest() {
    queue->Open([this] { ++wakes; });
  }
  ~SubscriptionIndexTest() override { queue->Close(); }

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

}  // namespace
}  // namespace zuva::serve
