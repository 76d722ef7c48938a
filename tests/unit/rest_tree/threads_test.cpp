#include <gtest/gtest.h>

#include <atomic>
#include <string>
#include <thread>
#include <vector>

#include "tests/unit/rest_tree/tree_fixture.h"

namespace zuva::test {
namespace {

constexpr int kRounds = 300;

// The vehicle's threads write, add and remove, a client posts, and the I/O thread reads, all at once.
TEST(Threads, NoReaderSeesHalfAnUpdate) {
  Tree tree;
  const auto part = tree.Add("part");
  const auto whole = tree.things->MakeThing("whole");
  whole->Embed("part", part);
  tree.things->Add(whole);
  part->SetFieldValue<ogm::Int>("a", 0);
  part->SetFieldValue<ogm::Int>("b", 0);
  part->SetPreUpdateCallback([](const auto&, const auto&, auto&) { return true; });
  tree.sink->Take();

  std::atomic<int> running{3};
  std::vector<std::thread> writers;
  writers.emplace_back([&] {
    for (int i = 1; i <= kRounds; ++i) {
      const ChangeScope scope{*part};
      part->SetFieldValue<ogm::Int>("a", i);
      part->SetFieldValue<ogm::Int>("b", i);
    }
    --running;
  });
  writers.emplace_back([&] {
    for (int i = 1; i <= kRounds; ++i) tree.Post(part->Path(), R"({"a":-1,"b":-1})");
    --running;
  });
  writers.emplace_back([&] {
    const auto view = tree.things->MakeThing("view");
    for (int i = 1; i <= kRounds; ++i) {
      {
        const ChangeScope scope{*view};
        view->SetFieldValue<ogm::Int>("shown", i);
        tree.things->Add(view);
      }
      tree.things->Remove(view->GetUuid());
    }
    --running;
  });
  while (running > 0) {
    ServerReply reply;
    tree.Ask(reply, whole->Path());
    const auto& embedded = ogm::Get<ogm::Object>(*reply.GetBody()->tree, "part");
    EXPECT_EQ(ogm::Get<ogm::Int>(embedded, "a").GetValue(), ogm::Get<ogm::Int>(embedded, "b").GetValue());
    EXPECT_TRUE(tree.Get("/S/things").starts_with('['));
  }
  for (auto& writer : writers) writer.join();

  EXPECT_EQ(tree.Get(whole->Path()), TextOf(*whole));
  EXPECT_EQ(tree.Get("/S/things"), '[' + TextOf(*part) + ',' + TextOf(*whole) + ']');
  EXPECT_EQ(tree.sink->Count("added"), static_cast<std::size_t>(kRounds));
  EXPECT_EQ(tree.sink->Count("removed"), static_cast<std::size_t>(kRounds));
}

}  // namespace
}  // namespace zuva::test
