#include "ara/log/impl/writer.h"

#include "ara/log/logger.h"
#include "os/thread.h"

#include <pthread.h>

#include <algorithm>
#include <csignal>
#include <cstdio>
#include <exception>
#include <string>
#include <utility>

namespace ara::log::impl {

namespace {

constexpr std::size_t kRingBytes = std::size_t{8} * 1024 * 1024;
constexpr std::chrono::milliseconds kNap{5};

}  // namespace

Writer::Writer(std::unique_ptr<Sink> sink, const Logger& self, EarlyRecords::Kept early)
    : ring_{kRingBytes}, self_{self}, sink_{std::move(sink)}, early_{std::move(early)} {
  thread_ = os::StartThread("log_writer", [this] { Run(); });
}

void Writer::Push(const Record& record) noexcept {
  if (!ring_.Push(record)) {
    lost_.fetch_add(1, std::memory_order_relaxed);
  } else if (stopping_.load(std::memory_order_seq_cst)) {
    WriteOut();
    return;
  }
  const bool urgent = record.level <= LogLevel::kError;
  if (urgent) urgent_.store(true, std::memory_order_seq_cst);
  // The record is in the ring before the state is read, and the thread looks into the ring after it has set its state: one of both
  // sees the other.
  const State state = state_.load(std::memory_order_seq_cst);
  if (state == State::asleep || (urgent && state == State::napping)) Wake();
}

void Writer::Introduce(const Logger& logger) noexcept {
  const std::lock_guard lock{sinkMutex_};
  try {
    sink_->Introduce(logger);
  } catch (const std::exception&) {
    // No memory: the sink meets the logger with its first line.
  }
}

void Writer::Wake() noexcept {
  if (state_.exchange(State::working, std::memory_order_seq_cst) == State::working) return;  // somebody else does it
  const std::lock_guard lock{sleepMutex_};
  wakeUp_.notify_one();
}

void Writer::Run() {
  while (!stopping_.load(std::memory_order_seq_cst)) RestAfter(WriteOut());
}

void Writer::RestAfter(bool wrote) {
  const State rest = wrote ? State::napping : State::asleep;
  state_.store(rest, std::memory_order_seq_cst);
  const bool call = urgent_.exchange(false, std::memory_order_seq_cst) || stopping_.load(std::memory_order_seq_cst) ||
                    (rest == State::asleep && ring_.Reserved() != ring_.Popped());
  if (!call) {
    const auto woken = [this] { return state_.load(std::memory_order_seq_cst) == State::working; };
    std::unique_lock lock{sleepMutex_};
    if (rest == State::napping) {
      wakeUp_.wait_for(lock, kNap, woken);
    } else {
      wakeUp_.wait(lock, woken);
    }
  }
  state_.store(State::working, std::memory_order_seq_cst);
}

bool Writer::WriteOut() noexcept {
  const std::lock_guard lock{sinkMutex_};
  WriteEarlyLocked();
  // In this order: what is in the ring up to `end` was there before the loss, so it is written before the warning.
  const std::size_t lost = lost_.exchange(0, std::memory_order_seq_cst);
  const std::uint64_t end = ring_.Reserved();
  bool wrote = false;
  for (Record record; ring_.Popped() < end && ring_.Front(record) && !abandoned_.load(std::memory_order_relaxed); ring_.Pop()) {
    if (!WriteLocked(record)) lost_.fetch_add(1, std::memory_order_relaxed);
    wrote = true;
  }
  WarnOfLossLocked(lost);
  lost_.fetch_add(sink_->Flush(), std::memory_order_relaxed);
  {
    const std::lock_guard progressLock{progressMutex_};
    begun_ = true;
    writtenTo_ = ring_.Popped();
  }
  progress_.notify_all();
  return wrote;
}

void Writer::WriteEarlyLocked() noexcept {
  if (early_.records.empty()) return;
  WarnOfLossLocked(std::exchange(early_.dropped, 0));  // first, since the dropped ones were the oldest
  for (const auto& [record, text] : early_.records) {
    if (!WriteLocked({record.time, record.level, record.logger, text})) lost_.fetch_add(1, std::memory_order_relaxed);
  }
  early_.records.clear();
}

void Writer::WarnOfLossLocked(std::size_t lost) noexcept {
  if (lost == 0 || !self_.IsLogEnabled(LogLevel::kWarn)) return;
  char text[64];
  const int length = std::snprintf(text, sizeof text, "%zu log records lost", lost);
  const Record warning{std::chrono::system_clock::now(), LogLevel::kWarn, &self_, {text, static_cast<std::size_t>(length)}};
  if (!WriteLocked(warning)) lost_.fetch_add(lost, std::memory_order_relaxed);  // to be said the next time
}

bool Writer::WriteLocked(const Record& record) noexcept {
  try {
    sink_->Write(record);
    return true;
  } catch (const std::exception&) {  // a log must not end the process for that
    return false;
  }
}

bool Writer::Drain() noexcept {
  if (stopping_.load(std::memory_order_seq_cst)) {
    WriteOut();
    return true;
  }
  const std::uint64_t end = ring_.Reserved();
  urgent_.store(true, std::memory_order_seq_cst);
  Wake();
  std::unique_lock lock{progressMutex_};
  return progress_.wait_for(lock, sink_->Patience(), [this, end] { return begun_ && writtenTo_ >= end; });
}

void Writer::Stop() noexcept {
  if (std::this_thread::get_id() == thread_.get_id()) return;  // the end came upon the writer itself
  std::call_once(stopOnce_, [this] { StopOnce(); });
}

void Writer::StopOnce() noexcept {
  // From here on this thread writes too, perhaps to a reader that has gone, and the process shall end by its own will. The sink's
  // library may have its last words after us, hence for good.
  sigset_t pipe;
  ::sigemptyset(&pipe);
  ::sigaddset(&pipe, SIGPIPE);
  ::pthread_sigmask(SIG_BLOCK, &pipe, nullptr);
  const auto begin = std::chrono::steady_clock::now();
  if (!Drain()) abandoned_.store(true, std::memory_order_relaxed);
  stopping_.store(true, std::memory_order_seq_cst);
  Wake();
  thread_.join();
  WriteOut();
  const auto spent = std::chrono::duration_cast<std::chrono::milliseconds>(std::chrono::steady_clock::now() - begin);
  const std::lock_guard lock{sinkMutex_};
  sink_->Close(std::max(std::chrono::milliseconds{0}, sink_->Patience() - spent));
}

}  // namespace ara::log::impl
