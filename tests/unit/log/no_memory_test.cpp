#include "ara/log/impl/early_records.h"
#include "ara/log/impl/line_sink.h"
#include "ara/log/impl/writer.h"
#include "ara/log/logging.h"
#include "tests/support/failing_new.h"
#include "tests/support/log_file.h"
#include "tests/support/temp_root.h"

#include <gtest/gtest.h>

#include <atomic>
#include <cstdlib>
#include <new>
#include <string>

namespace {

using ara::log::LogLevel;
using ara::log::impl::Record;
using ara::log::impl::Writer;
using test_support::FailingNew;

Record MakeRecord(std::string_view text) {
  static const ara::log::Logger& logger = ara::log::CreateLogger("TEST", "no memory");
  return {std::chrono::system_clock::now(), LogLevel::kInfo, &logger, text};
}

TEST(NoMemory, ALineIsWrittenWholeOrNotAtAll) {
  const std::string huge(60'000, '\n');  // four times as long when it is written: more than the sink keeps ready
  for (unsigned n = 1; n < 5; ++n) {
    const test_support::TempRoot root;
    const auto sink = ara::log::impl::LineSink::OnFile("APPL", root.LogPath());
    (void)MakeRecord("");
    try {
      const FailingNew none{n, FailingNew::Scope::kAllAfter};
      sink->Write(MakeRecord(huge));
    } catch (const std::bad_alloc&) {
      (void)sink->Flush();
    }
    sink->Write(MakeRecord("next"));
    EXPECT_EQ(sink->Flush(), 0U);
    test_support::LogFile file{root.LogPath()};
    ASSERT_FALSE(file.Lines().empty());
    EXPECT_EQ(file.Lines().back().text, "next");
    for (const auto& line : file.Lines()) EXPECT_TRUE(line.text == "next" || line.text.size() == 4 * huge.size()) << n;
  }
}

TEST(NoMemory, ARecordFromBeforeTheStartCountsAsLost) {
  ara::log::impl::EarlyRecords early;
  early.Keep(MakeRecord("kept"));
  {
    const FailingNew none{1, FailingNew::Scope::kAllAfter};
    early.Keep(MakeRecord("a text that is too long to stand in the string itself"));
  }
  const auto kept = early.Take();
  EXPECT_EQ(kept.records.size(), 1U);
  EXPECT_EQ(kept.dropped, 1U);
}

/// Takes nothing as long as it is poor.
class PoorSink : public ara::log::impl::Sink {
 public:
  struct State {
    std::atomic<int> poorFor{0};  // so many writes
    std::vector<std::string> texts;
  };
  explicit PoorSink(State& state) : state_{state} {}
  void Write(const Record& record) override {
    if (state_.poorFor-- > 0) throw std::bad_alloc{};
    state_.texts.emplace_back(record.text);
  }
  std::size_t Flush() noexcept override { return 0; }
  void Close(std::chrono::milliseconds) noexcept override {}
  std::chrono::milliseconds Patience() const noexcept override { return std::chrono::seconds{30}; }

 private:
  State& state_;
};

TEST(NoMemory, TheWriterGoesOnAndItsWarningsCountEachLostRecordOnce) {
  PoorSink::State sink;
  static Writer& writer = *new Writer{std::make_unique<PoorSink>(sink), ara::log::CreateLogger("TEST", "writer"), {}};
  sink.poorFor = 5;  // records, and warnings of them
  constexpr int kRecords = 20;
  for (int i = 0; i < kRecords; ++i) {
    writer.Push(MakeRecord("record"));
    ASSERT_TRUE(writer.Drain());
  }
  writer.Stop();
  int accounted = 0;
  for (const auto& text : sink.texts) accounted += text == "record" ? 1 : std::stoi(text);
  EXPECT_EQ(accounted, kRecords);
  EXPECT_EQ(sink.texts.back(), "record");
}

}  // namespace
