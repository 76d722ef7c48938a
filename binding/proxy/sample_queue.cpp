#include "binding/proxy/sample_queue.h"

#include <algorithm>
#include <utility>

namespace xr::com::cpp_binding::proxy {

void Sample_queue::emplace_sample(Decoded_sample sample) {
  while (!samples_.empty() && (samples_.size() >= kMaxSamples || bytes_ + sample.bytes > kMaxBytes)) {
    bytes_ -= samples_.front().bytes;
    samples_.pop_front();
    ++oldest_;
  }
  const auto bytes = sample.bytes;
  samples_.push_back(std::move(sample));
  bytes_ += bytes;
  ++newest_;
}

bool copy_samples_to_cache(Sample_cache& cache, bool replace, std::size_t capacity, const Sample_queue& queue, std::uint64_t& lastUpdate,
                           std::uint64_t oldest) {
  const auto taken = std::max(lastUpdate, oldest);
  const auto fresh = std::min<std::size_t>(queue.newest() - taken, capacity);
  const auto first = queue.size() - fresh;

  if (replace || fresh == capacity) {
    Sample_cache newest;
    newest.reserve(fresh);
    for (auto index = first; index < queue.size(); ++index) newest.push_back(queue[index]);
    cache = std::move(newest);
  } else {
    const auto room = capacity - fresh;
    cache.reserve(cache.size() + fresh);  // what throws does so before anything has changed
    if (cache.size() > room) cache.erase(cache.begin(), cache.end() - static_cast<std::ptrdiff_t>(room));
    for (auto index = first; index < queue.size(); ++index) cache.push_back(queue[index]);
  }
  lastUpdate = queue.newest();
  return fresh != 0;
}

}  // namespace xr::com::cpp_binding::proxy
