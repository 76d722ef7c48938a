#pragma once

#include "ara/log/impl/early_records.h"
#include "ara/log/impl/record_ring.h"
#include "ara/log/impl/sink.h"

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <mutex>
#include <thread>

namespace ara::log::impl {

/// Takes records from any thread into a ring and writes them to the sink on a thread of its own.
///
/// After a block the thread naps some milliseconds, in which only urgent records wake it, so a burst of lines costs one wake-up; with
/// nothing left it sleeps until the next record.
class Writer {
 public:
  /// `early` is written before all else. `self` is the logger of the writer's own warnings.
  Writer(std::unique_ptr<Sink> sink, const Logger& self, EarlyRecords::Kept early);
  /// A writer lives to the very end of the process, since there is no last record before it.
  ~Writer() = delete;

  /// Copies the record; without room it is counted, and one warning tells how many were lost. Any thread.
  void Push(const Record& record) noexcept;

  /// Tells the sink of a logger; waits while a block is being written. Any thread.
  void Introduce(const Logger& logger) noexcept;

  /// Waits until what was pushed before is with the sink, as long as the sink's patience lasts; false if it did not suffice. Any thread.
  bool Drain() noexcept;

  /// Drains, gives up what then still waits, ends the thread and closes the sink. Later records are written by the thread that pushes
  /// them. Any thread; the first call counts, and others return when it has ended.
  void Stop() noexcept;

 private:
  enum class State : std::uint8_t { working, napping, asleep };

  void Run();
  void RestAfter(bool wrote);
  void Wake() noexcept;
  bool WriteOut() noexcept;
  void WriteEarlyLocked() noexcept;
  void WarnOfLossLocked(std::size_t lost) noexcept;
  [[nodiscard]] bool WriteLocked(const Record& record) noexcept;  // false: no memory for it
  void StopOnce() noexcept;

  RecordRing ring_;
  const Logger& self_;
  std::atomic<std::size_t> lost_{0};
  std::atomic<State> state_{State::working};
  std::atomic<bool> urgent_{false};
  std::atomic<bool> stopping_{false};
  std::atomic<bool> abandoned_{false};  // the patience is at its end: leave the rest in the ring
  std::once_flag stopOnce_;

  // Guards nothing but the sleep itself: the states are atomics so that a push needs no lock.
  std::mutex sleepMutex_;
  std::condition_variable wakeUp_;

  // Guards begun_, true once the early records are with the sink, and writtenTo_, the position in the ring up to which all are.
  std::mutex progressMutex_;
  std::condition_variable progress_;
  bool begun_ = false;
  std::uint64_t writtenTo_ = 0;

  // Guards the sink, the popping side of the ring and early_; held by the writing thread for one block at a time.
  std::mutex sinkMutex_;
  const std::unique_ptr<Sink> sink_;
  EarlyRecords::Kept early_;

  std::thread thread_;  // last: it uses all the others
};

}  // namespace ara::log::impl
