#include "ara/log/testing/capture.h"
#include "fakes.h"
#include "tests/support/wait_for.h"
#include "xr/com/execution/static_thread_pool.h"

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <future>
#include <thread>

namespace binding_test {
namespace {

using ara::log::LogLevel;
using ara::log::testing::Capture;

std::vector<std::uint64_t> Numbers(const Event::Samples& samples) {
  std::vector<std::uint64_t> numbers;
  for (const auto& sample : samples) {
    for (const auto& record : *sample) numbers.push_back(record.wide.value());
  }
  return numbers;
}

class EventTest : public testing::Test {
 protected:
  /// A handler as users write it: takes what is there.
  void TakeOnReceive() {
    event.set_receive_handler([this] {
      ++calls;
      event.update();
      for (const auto number : Numbers(event.get_cached_samples())) seen.push_back(number);
      event.cleanup();
    });
  }

  std::shared_ptr<FakePort> port = std::make_shared<FakePort>();
  std::shared_ptr<HandDriven> executor = std::make_shared<HandDriven>();
  Event event{port, executor};
  int calls = 0;
  std::vector<std::uint64_t> seen;
};

using Numbered = std::vector<std::uint64_t>;

TEST_F(EventTest, HandlerSetBeforeSubscribeSeesTheFirstSample) {
  TakeOnReceive();
  port->onSubscribe = [this] { port->Notify(1); };  // the service sends its present value at once
  event.subscribe(3);
  EXPECT_EQ(port->subscribedField, Service::third::kIndex);
  EXPECT_EQ(calls, 0);  // never on the caller's or the transport's thread
  executor->RunAll();
  EXPECT_EQ(seen, Numbered{1});
}

TEST_F(EventTest, SampleBeforeTheHandlerWaitsForTheNextOne) {
  event.subscribe(3);
  port->Notify(1);
  TakeOnReceive();
  executor->RunAll();
  EXPECT_EQ(calls, 0);
  port->Notify(2);
  executor->RunAll();
  EXPECT_EQ(calls, 1);
  EXPECT_EQ(seen, (Numbered{1, 2}));
}

TEST_F(EventTest, BurstMakesOneDispatchWithTheNewestSamples) {
  TakeOnReceive();
  event.subscribe(3);
  for (std::uint64_t number = 1; number <= 150; ++number) port->Notify(number);
  EXPECT_EQ(executor->jobs.size(), 1U);
  executor->RunAll();
  EXPECT_EQ(calls, 1);
  EXPECT_EQ(seen, (Numbered{148, 149, 150}));
}

TEST_F(EventTest, HandlerThatDoesNotUpdateIsNotCalledAgainUntilItDoes) {
  event.set_receive_handler([this] { ++calls; });
  event.subscribe(3);
  for (std::uint64_t number = 1; number <= 3; ++number) port->Notify(number), executor->RunAll();
  EXPECT_EQ(calls, 1);
  EXPECT_TRUE(event.update());  // re-arms, but does not dispatch itself
  EXPECT_EQ(executor->RunAll(), 0U);
  port->Notify(4);
  executor->RunAll();
  EXPECT_EQ(calls, 2);
}

TEST_F(EventTest, SampleBeforeTheHandlersUpdateIsTakenByIt) {
  event.set_receive_handler([this] {
    ++calls;
    if (calls == 1) port->Notify(2);
    event.update();
    seen = Numbers(event.get_cached_samples());
  });
  event.subscribe(3);
  port->Notify(1);
  executor->RunAll();
  EXPECT_EQ(calls, 1);
  EXPECT_EQ(seen, (Numbered{1, 2}));
}

TEST_F(EventTest, SampleAfterTheHandlersUpdateDispatchesAnew) {
  event.set_receive_handler([this] {
    ++calls;
    event.update();
    seen = Numbers(event.get_cached_samples());
    if (calls == 1) port->Notify(2), port->Notify(3);
  });
  event.subscribe(3);
  port->Notify(1);
  executor->RunAll();
  EXPECT_EQ(calls, 2);
  EXPECT_EQ(seen, (Numbered{2, 3}));
}

TEST_F(EventTest, UpdateKeepsWhatTheFilterAccepts) {
  event.subscribe(3);
  for (std::uint64_t number = 1; number <= 3; ++number) port->Notify(number);
  EXPECT_TRUE(event.update([](const auto& sample) { return sample.at(0).wide != 2U; }));
  EXPECT_EQ(Numbers(event.get_cached_samples()), (Numbered{1, 3}));
  EXPECT_FALSE(event.update()) << "a sample that was refused is gone";
}

TEST_F(EventTest, UpdateReplacesAndCleanupEmptiesButKeepsWhatWasCopied) {
  event.subscribe(2);
  for (std::uint64_t number = 1; number <= 3; ++number) port->Notify(number);
  EXPECT_TRUE(event.update());
  const auto copied = event.get_cached_samples();
  EXPECT_EQ(Numbers(copied), (Numbered{2, 3}));
  EXPECT_FALSE(event.update());
  EXPECT_TRUE(event.get_cached_samples().empty());
  port->Notify(4);
  event.update();
  event.cleanup();
  EXPECT_TRUE(event.get_cached_samples().empty());
  EXPECT_EQ(Numbers(copied), (Numbered{2, 3}));
}

TEST_F(EventTest, UpdateBeforeSubscribeIsAnIncident) {
  const Capture capture;
  EXPECT_FALSE(event.update());
  EXPECT_EQ(CountOf(capture.Lines(), "Event_update_when_not_subscribed"), 1U);
  EXPECT_NE(capture.Lines()[0].find(R"("2_string":"0x0001"},"4_event_id":2}})"), std::string::npos);
}

TEST_F(EventTest, DropsWhatCannotBeDecodedAndWhatIsMarkedFaulty) {
  const Capture capture;
  TakeOnReceive();
  event.subscribe(3);
  port->Notify(Hex("00000004 00000001"));
  port->Notify(Encoded({FullSample()}), 1);
  EXPECT_EQ(executor->RunAll(), 0U);
  ASSERT_EQ(capture.Lines().size(), 1U);
  EXPECT_NE(capture.Lines()[0].find(R"("4_event_id":2,"5_text":"Deserialization calculated invalid end position.")"), std::string::npos);
  port->Notify(7);
  executor->RunAll();
  EXPECT_EQ(seen, Numbered{7});
}

TEST_F(EventTest, ExceptionOfTheHandlerEndsAsAnIncidentAlsoBeforeItsUpdate) {
  const Capture capture;
  event.set_receive_handler([this] {
    if (++calls == 1) throw 1;
    event.update();
    if (calls == 2) throw 2;
  });
  event.subscribe(3);
  for (std::uint64_t number = 1; number <= 3; ++number) port->Notify(number), executor->RunAll();
  EXPECT_EQ(calls, 3);
  EXPECT_EQ(CountOf(capture.Lines(), "Event_receive_handler_exception"), 2U);
  EXPECT_EQ(capture.Records()[0].level, LogLevel::kFatal);
}

TEST_F(EventTest, AHandlerThatTakesOver250MillisecondsIsAnIncident) {
  const Capture capture;
  event.set_receive_handler([this] {
    event.update();
    if (++calls == 2) std::this_thread::sleep_for(std::chrono::milliseconds{251});
  });
  event.subscribe(3);
  port->Notify(1), executor->RunAll();
  EXPECT_EQ(CountOf(capture.Lines(), "Event_receive_handler_performance"), 0U);
  port->Notify(2), executor->RunAll();
  EXPECT_EQ(CountOf(capture.Lines(), "Event_receive_handler_performance"), 1U);
}

TEST_F(EventTest, ADispatchThatCannotBePostedIsTriedAgainWithTheNext) {
  const Capture capture;
  TakeOnReceive();
  event.set_state_handler([this](auto) { ++calls; });
  event.subscribe(3);
  executor->refusing = true;
  port->Notify(1);
  port->sink.lock()->event_state_changed(Subscription_state::pending);
  EXPECT_EQ(executor->RunAll(), 0U);
  executor->refusing = false;
  port->Notify(2);
  port->sink.lock()->event_state_changed(Subscription_state::subscribed);
  executor->RunAll();
  EXPECT_EQ(seen, (Numbered{1, 2}));
  EXPECT_EQ(calls, 2);
}

TEST_F(EventTest, WritesItsIncidentWhileTheTransportMayGoOn) {
  const Capture capture;
  event.subscribe(3);
  bool passed = false;
  std::future<void> transport;
  port->onInstance = [&] {
    transport = std::async(std::launch::async, [sink = port->sink.lock()] { sink->event_state_changed(Subscription_state::pending); });
    passed = transport.wait_for(test_support::kPatience) == std::future_status::ready;
    port->onInstance = nullptr;
  };
  event.update();
  EXPECT_TRUE(passed) << "the event's mutex was held";
  transport.get();
  executor->RunAll();  // a job that is left would keep strand and executor alive
  EXPECT_EQ(CountOf(capture.Lines(), "Event_cache_update"), 1U);
}

TEST_F(EventTest, TellsTheDataOfASampleAtDebugOnly) {
  for (const auto level : {LogLevel::kInfo, LogLevel::kDebug}) {
    const Capture capture{level};
    event.subscribe(3);
    port->Notify(5);
    EXPECT_EQ(CountOf(capture.Lines(), "Event_update_rx"), level == LogLevel::kDebug ? 1U : 0U);
    if (level == LogLevel::kDebug) {
      EXPECT_NE(capture.Lines().back().find(R"("4_event_id":2},"2_data":[{"0_1WireType":3,"0_2DataID":677,"0_3":5}]})"), std::string::npos);
    }
  }
}

TEST_F(EventTest, StateChangesReachTheirHandlerOnTheStrand) {
  const Capture capture;
  event.subscribe(3);
  port->sink.lock()->event_state_changed(Subscription_state::pending);
  EXPECT_EQ(event.subscription_state(), Subscription_state::pending);
  executor->RunAll();  // no handler so far
  event.set_state_handler([this](Subscription_state state) {
    EXPECT_EQ(state, Subscription_state::subscribed);
    ++calls;
    throw std::runtime_error{"state"};
  });
  port->sink.lock()->event_state_changed(Subscription_state::pending);
  port->sink.lock()->event_state_changed(Subscription_state::subscribed);  // before the task ran: told once, the newest
  executor->RunAll();
  EXPECT_EQ(calls, 1);
  EXPECT_EQ(CountOf(capture.Lines(), "Event_state_handler_exception"), 1U);
}

TEST_F(EventTest, ProxiesOfOneInstanceShareTheTransportSide) {
  event.subscribe(3);
  port->Notify(1), port->Notify(2);
  {
    Event second{port, executor};
    second.set_receive_handler([&] { second.update(), seen = Numbers(second.get_cached_samples()); });
    second.subscribe(3);
    executor->RunAll();
    EXPECT_EQ(seen, Numbered{2});  // of the samples before its time, the newest
    EXPECT_EQ(port->subscriptions, 1);
  }
  EXPECT_EQ(port->subscriptions, 1);
  port->Notify(3);
  event.update();
  EXPECT_EQ(Numbers(event.get_cached_samples()), (Numbered{1, 2, 3}));
}

TEST_F(EventTest, NothingBeginsAfterTheEnd) {
  auto gone = std::make_unique<Event>(port, executor);
  gone->set_receive_handler([this] { ++calls; });
  gone->subscribe(1);
  port->Notify(1);
  gone.reset();
  EXPECT_EQ(port->subscriptions, 0);
  port->Notify(2);
  executor->RunAll();
  EXPECT_EQ(calls, 0);
}

TEST_F(EventTest, HandlerMayEndItsOwnEvent) {
  auto own = std::make_unique<Event>(port, executor);
  own->set_receive_handler([this, &own] { own.reset(), ++calls; });
  own->subscribe(1);
  port->Notify(1);
  executor->RunAll();
  EXPECT_EQ(calls, 1);
}

TEST(EventThreads, NoSampleIsLeftWaitingWhileTheTransportKeepsSending) {
  const auto port = std::make_shared<FakePort>();
  const auto pool = std::make_shared<xr::com::static_thread_pool>();
  constexpr std::uint64_t kLast = 2000;
  std::mutex mutex;
  std::condition_variable changed;
  std::uint64_t newest = 0;
  bool inOrder = true;
  std::atomic<int> inside = 0;
  std::atomic<bool> overlapped = false;

  Event event{port, pool};
  event.set_receive_handler([&] {
    if (++inside > 1) overlapped = true;
    event.update();
    for (const auto number : Numbers(event.get_cached_samples())) {
      const std::lock_guard lock{mutex};
      inOrder = inOrder && number > newest;
      newest = number;
    }
    event.cleanup();
    changed.notify_one();
    --inside;
  });
  event.subscribe(100);
  std::thread transport{[&] {
    for (std::uint64_t number = 1; number <= kLast; ++number) port->Notify(number);
  }};
  {
    std::unique_lock lock{mutex};
    EXPECT_TRUE(changed.wait_for(lock, std::chrono::seconds{20}, [&] { return newest == kLast; }));
  }
  transport.join();
  pool->stop();
  EXPECT_TRUE(inOrder);
  EXPECT_FALSE(overlapped);
}

TEST(EventThreads, EndDoesNotWaitForARunningHandler) {
  const auto port = std::make_shared<FakePort>();
  const auto pool = std::make_shared<xr::com::static_thread_pool>(1);
  std::atomic<bool> running = false;
  std::atomic<bool> released = false;
  auto event = std::make_unique<Event>(port, pool);
  event->set_receive_handler([&] {
    running = true;
    running.notify_one();
    released.wait(false);
  });
  event->subscribe(1);
  port->Notify(1);
  running.wait(false);
  event.reset();  // would hang here otherwise
  released = true;
  released.notify_one();
  pool->stop();
}

}  // namespace
}  // namespace binding_test
