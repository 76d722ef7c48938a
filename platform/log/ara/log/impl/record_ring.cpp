#include "ara/log/impl/record_ring.h"

#include <cstring>

namespace ara::log::impl {

/// What stands before the text. `size` counts the whole slot, a multiple of `kStep`; the bit `kPadding` marks a slot that only fills
/// up the end of the ring, since a record is never split.
struct RecordRing::Slot {
  std::uint32_t size;
  std::uint32_t length;
  std::chrono::system_clock::time_point time;
  const Logger* logger;
  LogLevel level;
};

namespace {

constexpr std::uint64_t kStep = 16;  // what is left at the end of the ring always holds a padding slot's size word
constexpr std::uint32_t kPadding = 1;

std::atomic_ref<std::uint32_t> SizeWord(std::byte* slot) noexcept {
  return std::atomic_ref{*reinterpret_cast<std::uint32_t*>(slot)};
}

}  // namespace

// Zeroing touches every page now, so that no push pays for it.
RecordRing::RecordRing(std::size_t capacity) : capacity_{capacity}, bytes_{std::make_unique<std::byte[]>(capacity)} {}

bool RecordRing::Push(const Record& record) noexcept {
  const std::uint64_t size = (sizeof(Slot) + record.text.size() + kStep - 1) / kStep * kStep;
  std::uint64_t position = head_.load(std::memory_order_relaxed);
  std::uint64_t padding = 0;
  do {
    const std::uint64_t toEnd = capacity_ - (position & (capacity_ - 1));
    padding = toEnd < size ? toEnd : 0;
    if (position + padding + size - tail_.load(std::memory_order_acquire) > capacity_) return false;
  } while (!head_.compare_exchange_weak(position, position + padding + size, std::memory_order_seq_cst, std::memory_order_relaxed));
  if (padding != 0) {
    SizeWord(At(position)).store(static_cast<std::uint32_t>(padding) | kPadding, std::memory_order_release);
  }
  Fill(position + padding, size, record);
  return true;
}

void RecordRing::Fill(std::uint64_t position, std::uint64_t size, const Record& record) noexcept {
  std::byte* const bytes = At(position);
  const Slot slot{0, static_cast<std::uint32_t>(record.text.size()), record.time, record.logger, record.level};
  // All but the size word, which the popper may be reading right now.
  std::memcpy(bytes + sizeof slot.size, reinterpret_cast<const std::byte*>(&slot) + sizeof slot.size, sizeof slot - sizeof slot.size);
  std::memcpy(bytes + sizeof slot, record.text.data(), record.text.size());
  SizeWord(bytes).store(static_cast<std::uint32_t>(size), std::memory_order_seq_cst);
}

std::uint32_t RecordRing::SizeAt(std::uint64_t position) const noexcept {
  return SizeWord(At(position)).load(std::memory_order_seq_cst);
}

bool RecordRing::Front(Record& record) const noexcept {
  std::uint64_t position = tail_.load(std::memory_order_relaxed);
  std::uint32_t size = SizeAt(position);
  if ((size & kPadding) != 0) {
    position += size - kPadding;
    size = SizeAt(position);
  }
  if (size == 0) return false;
  Slot slot;
  std::memcpy(reinterpret_cast<std::byte*>(&slot) + sizeof size, At(position) + sizeof size, sizeof slot - sizeof size);
  record = {slot.time, slot.level, slot.logger, {reinterpret_cast<const char*>(At(position)) + sizeof slot, slot.length}};
  return true;
}

void RecordRing::Pop() noexcept {
  const std::uint64_t position = tail_.load(std::memory_order_relaxed);
  const std::uint32_t size = SizeAt(position);
  if ((size & kPadding) == 0) {
    GiveBack(size);
    return;
  }
  GiveBack(size - kPadding);
  GiveBack(SizeAt(tail_.load(std::memory_order_relaxed)));
}

void RecordRing::GiveBack(std::uint64_t size) noexcept {
  const std::uint64_t position = tail_.load(std::memory_order_relaxed);
  std::memset(At(position), 0, size);
  tail_.store(position + size, std::memory_order_release);
}

}  // namespace ara::log::impl
