#pragma once

#include "binding/proxy/record_operations.h"

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <deque>
#include <vector>

namespace xr::com::cpp_binding::proxy {

/// The newest samples of one event, bounded by number and by memory; at the bound the oldest go, the newest always stays.
///
/// Samples are counted from 1 on. The caller guards the queue; the two counters may be read without.
class Sample_queue {
 public:
  static constexpr std::size_t kMaxSamples = 100;
  static constexpr std::size_t kMaxBytes = std::size_t{2} * 1024 * 1024;

  void emplace_sample(Decoded_sample sample);

  /// Number of the last sample that was dropped; the samples after it, up to `newest`, are kept.
  std::uint64_t oldest() const { return oldest_.load(); }
  std::uint64_t newest() const { return newest_.load(); }

  std::size_t size() const { return samples_.size(); }

  /// The sample `index` places behind the oldest one kept.
  const Any_sample& operator[](std::size_t index) const { return samples_[index].sample; }

 private:
  std::deque<Decoded_sample> samples_;
  std::size_t bytes_ = 0;
  std::atomic<std::uint64_t> oldest_ = 0;
  std::atomic<std::uint64_t> newest_ = 0;
};

using Sample_cache = std::vector<Any_sample>;

/// Moves what is newer than `lastUpdate` into the cache, at most `capacity` samples, and marks it as taken.
///
/// With `replace`, or when the new samples fill the capacity, the cache then holds just them; else they are appended and the
/// cache's own oldest give way. Returns whether there were any new samples.
bool copy_samples_to_cache(Sample_cache& cache, bool replace, std::size_t capacity, const Sample_queue& queue, std::uint64_t& lastUpdate,
                           std::uint64_t oldest);

}  // namespace xr::com::cpp_binding::proxy
