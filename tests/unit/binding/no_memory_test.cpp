#include "fakes.h"
#include "xr/com/loggers.h"

#include "ara/log/logger.h"
#include "tests/support/failing_new.h"

#include <gtest/gtest.h>

#include <chrono>

namespace binding_test {
namespace {

using namespace std::chrono_literals;

/// Runs a piece in which the n-th allocation of this thread fails, counted from 1. Returns whether it came that far.
template <class Piece>
bool FailsAt(unsigned n, Piece&& piece) {
  const test_support::FailingNew failing{n};
  try {
    piece();
  } catch (const std::exception&) {  // that it throws is fine: it is what is left behind that counts
  }
  return test_support::FailingNew::HasFailed();
}

/// A field with a handler as users write it, on a port and an executor that the test drives.
struct Session {
  Session() {
    field->event().set_receive_handler([this] {
      field->event().update();
      for (const auto& sample : field->event().get_cached_samples()) newest = sample->front().wide.value();
      field->event().cleanup();
    });
  }
  void Notify(const Bytes& payload) { port->Notify(payload); }
  bool Serves() {
    field->event().subscribe(3);
    port->Notify(std::uint64_t{99});
    executor->RunAll();
    auto future = field->get();
    port->Answer(port->calls.size() - 1, {0, Encoded({FullSample()})});
    return newest == 99 && future.get() == std::vector{FullSample()};
  }

  std::shared_ptr<FakePort> port = std::make_shared<FakePort>();
  std::shared_ptr<HandDriven> executor = std::make_shared<HandDriven>();
  std::unique_ptr<Field> field = std::make_unique<Field>(port, executor);
  std::uint64_t newest = 0;
};

class NoMemory : public testing::TestWithParam<ara::log::LogLevel> {
 protected:
  NoMemory() { ara::com::logger().SetLevel(GetParam()); }
  ~NoMemory() override { ara::com::logger().SetLevel(levelBefore_); }

  const Bytes sample_ = [] {
    auto sample = FullSample();
    sample.text = "told";
    return Encoded({sample, sample, sample});
  }();

 private:
  const ara::log::LogLevel levelBefore_ = ara::com::logger().Level();
};

TEST_P(NoMemory, AnEventServesAgainAfterEachFailure) {
  bool failed = true;
  for (unsigned n = 1; failed; ++n) {
    Session session;
    failed = FailsAt(n, [&] { session.field->event().subscribe(3); });
    EXPECT_TRUE(session.Serves()) << "subscribe " << n;
  }
  failed = true;
  for (unsigned n = 1; failed; ++n) {
    Session session;
    session.field->event().subscribe(3);
    failed = FailsAt(n, [&] {
      EXPECT_NO_THROW(session.Notify(sample_)) << "out to the transport";
      EXPECT_NO_THROW(session.port->sink.lock()->event_state_changed(Subscription_state::pending));
      EXPECT_NO_THROW(session.executor->RunAll()) << "out to the pool";
    });
    EXPECT_TRUE(session.Serves()) << "sample " << n;
  }
}

TEST_P(NoMemory, ACallEndsOrThrowsAndTheNextOneWorks) {
  bool failed = true;
  for (unsigned n = 1; failed; ++n) {
    Session session;
    const std::vector value{FullSample()};
    failed = FailsAt(n, [&] { session.field->set(value).wait_for(0ms); });
    EXPECT_TRUE(session.Serves()) << "call " << n;
  }
  failed = true;
  for (unsigned n = 1; failed; ++n) {
    Session session;
    auto future = session.field->get();
    Reply reply{0, sample_};
    failed = FailsAt(n, [&] { EXPECT_NO_THROW(session.port->Answer(0, std::move(reply))) << "out to the transport"; });
    EXPECT_EQ(future.wait_for(0ms), qe::com::Future_status::ready) << n;
    EXPECT_TRUE(session.Serves()) << "answer " << n;
  }
}

TEST_P(NoMemory, TheEndNeedsNone) {
  bool failed = true;
  for (unsigned n = 1; failed; ++n) {
    Session session;
    Field second{session.port, session.executor};
    session.field->event().subscribe(3);
    second.event().subscribe(3);
    const auto open = session.field->get();
    session.Notify(sample_);
    failed = FailsAt(n, [&] { session.field.reset(); });
    session.executor->RunAll();
    EXPECT_EQ(session.newest, 0U);
  }
}

INSTANTIATE_TEST_SUITE_P(Levels, NoMemory, testing::Values(ara::log::LogLevel::kInfo, ara::log::LogLevel::kDebug),
                         [](const auto& level) { return level.param == ara::log::LogLevel::kInfo ? "Info" : "Debug"; });

}  // namespace
}  // namespace binding_test
