#include "ara/log/impl/writer.h"
#include "ara/log/impl/record_ring.h"
#include "ara/log/logging.h"

#include <gmock/gmock.h>

#include <atomic>
#include <charconv>
#include <condition_variable>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

namespace {

using ara::log::LogLevel;
using ara::log::impl::EarlyRecords;
using ara::log::impl::Record;
using ara::log::impl::RecordRing;
using ara::log::impl::Writer;
using testing::EndsWith;

const ara::log::Logger& TestLogger() {
  return ara::log::CreateLogger("TEST", "writer");
}

Record MakeRecord(std::string_view text, LogLevel level = LogLevel::kInfo) {
  return {std::chrono::system_clock::now(), level, &TestLogger(), text};
}

/// Keeps the texts; the writing thread waits in it while the gate is closed.
class GatedSink : public ara::log::impl::Sink {
 public:
  struct State {
    std::mutex mutex;  // guards the members below
    std::condition_variable changed;
    bool isOpen = true;
    bool hasWriter = false;
    std::vector<std::string> texts;

    void SetOpen(bool open) {
      const std::lock_guard lock{mutex};
      isOpen = open;
      changed.notify_all();
    }
    void WaitForWriter() {
      std::unique_lock lock{mutex};
      changed.wait(lock, [this] { return hasWriter; });
    }
  };

  explicit GatedSink(State& state) : state_{state} {}
  void Write(const Record& record) override {
    std::unique_lock lock{state_.mutex};
    state_.hasWriter = true;
    state_.changed.notify_all();
    state_.changed.wait(lock, [this] { return state_.isOpen; });
    state_.texts.emplace_back(record.text);
  }
  std::size_t Flush() noexcept override { return 0; }
  void Close(std::chrono::milliseconds) noexcept override {}
  std::chrono::milliseconds Patience() const noexcept override { return std::chrono::seconds{30}; }

 private:
  State& state_;
};

/// Writers are never destroyed; this keeps the leak checker content.
Writer& MakeWriter(GatedSink::State& state, EarlyRecords::Kept early = {}) {
  static std::vector<Writer*>& writers = *new std::vector<Writer*>;
  return *writers.emplace_back(new Writer{std::make_unique<GatedSink>(state), TestLogger(), std::move(early)});
}

TEST(Writer, WarnsOnceOfAllRecordsThatFoundNoRoom) {
  GatedSink::State sink;
  sink.SetOpen(false);
  Writer& writer = MakeWriter(sink);
  writer.Push(MakeRecord("first"));
  sink.WaitForWriter();
  const std::string text(4000, 'x');
  constexpr std::size_t kPushed = 4000;  // about twice what the ring holds
  for (std::size_t i = 0; i < kPushed; ++i) writer.Push(MakeRecord(text));
  sink.SetOpen(true);
  writer.Stop();

  constexpr std::string_view kLost = " log records lost";
  std::size_t lost = 0;
  std::size_t warnings = 0;
  for (const auto& written : sink.texts) {
    if (written.find(kLost) == std::string::npos) continue;
    ++warnings;
    std::from_chars(written.data(), written.data() + written.size(), lost);
  }
  EXPECT_EQ(warnings, 1U);
  EXPECT_GT(lost, 1000U);
  EXPECT_EQ(sink.texts.size() - 2, kPushed - lost);
  EXPECT_THAT(sink.texts.back(), EndsWith(kLost));
}

TEST(Writer, WritesTheLatestEarlyRecordsFirstAndCountsTheOthers) {
  EarlyRecords early;
  for (std::size_t i = 0; i < EarlyRecords::kLimit + 3; ++i) early.Keep(MakeRecord(std::to_string(i)));
  GatedSink::State sink;
  Writer& writer = MakeWriter(sink, early.Take());
  writer.Push(MakeRecord("late"));
  writer.Stop();
  ASSERT_EQ(sink.texts.size(), EarlyRecords::kLimit + 2);
  EXPECT_EQ(sink.texts[0], "3 log records lost");
  EXPECT_EQ(sink.texts[1], "3");
  EXPECT_EQ(sink.texts.back(), "late");
}

TEST(Writer, DrainsWhatWasPushedBeforeAndWritesOnItsCallersThreadOnceStopped) {
  GatedSink::State sink;
  Writer& writer = MakeWriter(sink);
  for (int i = 0; i < 100; ++i) {  // from work, nap and sleep of the writing thread alike
    writer.Push(MakeRecord("drained", i % 3 == 0 ? LogLevel::kError : LogLevel::kInfo));
    ASSERT_TRUE(writer.Drain());
    const std::lock_guard lock{sink.mutex};
    ASSERT_EQ(sink.texts.size(), static_cast<std::size_t>(i) + 1);
  }
  writer.Stop();
  writer.Push(MakeRecord("after the end"));
  EXPECT_EQ(sink.texts.back(), "after the end");
}

TEST(RecordRing, KeepsEachPushersRecordsWholeAndInOrderAcrossItsEnd) {
  constexpr unsigned kPushers = 3;
  constexpr unsigned kRecords = 5000;
  RecordRing ring{4096};  // a few dozen records: it wraps and fills all the time
  std::vector<std::thread> pushers;
  for (unsigned pusher = 0; pusher < kPushers; ++pusher) {
    pushers.emplace_back([&ring, pusher] {
      for (unsigned i = 0; i < kRecords; ++i) {
        const std::string text = std::to_string(pusher) + ":" + std::to_string(i) + std::string(i % 97, '.');
        while (!ring.Push(MakeRecord(text))) std::this_thread::yield();
      }
    });
  }
  std::vector<unsigned> next(kPushers, 0);
  for (unsigned popped = 0; popped < kPushers * kRecords;) {
    Record record;
    if (!ring.Front(record)) {
      std::this_thread::yield();
      continue;
    }
    const auto pusher = static_cast<unsigned>(record.text.front() - '0');
    ASSERT_LT(pusher, kPushers);
    const unsigned i = next[pusher]++;
    ASSERT_EQ(record.text, std::to_string(pusher) + ":" + std::to_string(i) + std::string(i % 97, '.'));
    ring.Pop();
    ++popped;
  }
  for (auto& pusher : pushers) pusher.join();
  EXPECT_EQ(ring.Reserved(), ring.Popped());
}

}  // namespace
