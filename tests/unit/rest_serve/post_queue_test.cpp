#include "serve/post_queue.h"

#include <algorithm>
#include <atomic>
#include <vector>

#include <gtest/gtest.h>

#include "tests/unit/rest_serve/served_tree.h"

namespace zuva::serve {
namespace {

class Task final : public PostTask {
 public:
  explicit Task(std::shared_ptr<test::Gate> gate) : gate_{std::move(gate)} {}
  bool IsWanted() const noexcept override { return wanted; }
  void Run() noexcept override {
    runsBefore = gate_->Guests();
    gate_->Pass();
  }
  void Finish() noexcept override { finished = true; }
  void Refuse() noexcept override { refused = true; }

  bool wanted = true;
  bool finished = false;
  bool refused = false;
  unsigned runsBefore = 0;

 private:
  std::shared_ptr<test::Gate> gate_;
};

class PostQueueTest : public testing::Test {
 protected:
  std::shared_ptr<Task> Make() const { return std::make_shared<Task>(gate); }
  template <class Condition>
  bool RunUntil(Condition condition) {
    return test::WaitFor([&] {
      io.poll();
      io.restart();
      return condition();
    });
  }

  const int one = 1, two = 2, three = 3;  // resources
  std::shared_ptr<test::Gate> gate = std::make_shared<test::Gate>();
  boost::asio::io_context io;
  RequestPool pool{3};
  PostQueue queue{io, pool, 2};
};

TEST_F(PostQueueTest, AMuteResourceTakesTwoThreadsAndNoMore) {
  std::vector<std::shared_ptr<Task>> mute{Make(), Make(), Make()};
  for (const auto& task : mute) EXPECT_TRUE(queue.Submit(&one, task));
  const auto other = Make();
  EXPECT_TRUE(queue.Submit(&two, other));
  ASSERT_TRUE(gate->WaitForGuests(3)) << "the third thread is free for another resource";
  EXPECT_TRUE(queue.Submit(&three, Make())) << "waits for a thread";
  EXPECT_FALSE(queue.Submit(&three, Make())) << "the queue is full";
  gate->Open();
  EXPECT_TRUE(RunUntil([&] { return queue.IsIdle(); }));
  EXPECT_TRUE(other->finished && std::all_of(mute.begin(), mute.end(), [](const auto& task) { return task->finished && !task->refused; }));
  EXPECT_EQ(gate->Guests(), 5U);
}

TEST_F(PostQueueTest, ClientsThatHaveLeftTakeNoThread) {
  EXPECT_TRUE(queue.Submit(&one, Make()));
  EXPECT_TRUE(queue.Submit(&one, Make()));
  const auto left = Make(), stays = Make();
  EXPECT_TRUE(queue.Submit(&one, left));
  EXPECT_TRUE(queue.Submit(&one, stays));
  left->wanted = false;
  gate->Open();
  EXPECT_TRUE(RunUntil([&] { return queue.IsIdle(); }));
  EXPECT_TRUE(left->refused && !left->finished);
  EXPECT_TRUE(stays->finished);
  EXPECT_EQ(gate->Guests(), 3U);
}

TEST_F(PostQueueTest, OfThoseThatShareATurnOneRunsAtATimeAndHoldsUpNobodyElse) {
  const auto first = Make(), second = Make(), other = Make();
  EXPECT_TRUE(queue.Submit(&one, first, &one));
  EXPECT_TRUE(queue.Submit(&one, second, &one));
  EXPECT_TRUE(queue.Submit(&two, other, &two));
  EXPECT_TRUE(queue.Submit(&one, Make()));
  ASSERT_TRUE(gate->WaitForGuests(3));
  gate->Open();
  EXPECT_TRUE(RunUntil([&] { return queue.IsIdle(); }));
  EXPECT_TRUE(first->finished && second->finished && other->finished);
  EXPECT_EQ(second->runsBefore, 3U);
}

}  // namespace
}  // namespace zuva::serve
