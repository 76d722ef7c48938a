#pragma once

#include "ara/log/impl/record.h"

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <memory>

namespace ara::log::impl {

/// A bounded queue of records, kept as bytes: any number of threads push without a lock, one pops.
///
/// A pusher reserves a slot by moving `head_` and fills it; the slot's first word, its size, is stored last and tells the popper that
/// the slot is whole. Popped bytes are zeroed before they are given back, so a word not yet stored always reads as 0.
// NOLINTNEXTLINE(clang-analyzer-optin.performance.Padding): head and tail have a cache line each, so that both sides do not share one
class RecordRing {
 public:
  /// `capacity` in bytes, a power of two.
  explicit RecordRing(std::size_t capacity);

  /// False if there is no room. Any thread.
  bool Push(const Record& record) noexcept;

  /// The oldest record, if it is whole; its text lies in the ring until `Pop`. The popping thread only.
  bool Front(Record& record) const noexcept;
  void Pop() noexcept;

  /// Counts of bytes ever reserved and ever popped. A record is out once `Popped` has reached the `Reserved` read after its push.
  std::uint64_t Reserved() const noexcept { return head_.load(std::memory_order_seq_cst); }
  std::uint64_t Popped() const noexcept { return tail_.load(std::memory_order_acquire); }

 private:
  struct Slot;

  std::byte* At(std::uint64_t position) const noexcept { return bytes_.get() + (position & (capacity_ - 1)); }
  std::uint32_t SizeAt(std::uint64_t position) const noexcept;
  void Fill(std::uint64_t position, std::uint64_t size, const Record& record) noexcept;
  void GiveBack(std::uint64_t size) noexcept;

  const std::uint64_t capacity_;
  const std::unique_ptr<std::byte[]> bytes_;
  alignas(64) std::atomic<std::uint64_t> head_{0};
  alignas(64) std::atomic<std::uint64_t> tail_{0};
};

}  // namespace ara::log::impl
