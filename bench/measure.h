#pragma once

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstddef>
#include <cstdio>
#include <string>
#include <utility>
#include <vector>

/// What the benchmarks share: time, percentiles, and the one form of a row.
namespace bench {

using Clock = std::chrono::steady_clock;

inline double Microseconds(Clock::duration duration) {
  return std::chrono::duration<double, std::micro>(duration).count();
}

/// The value below which `share` (0 to 1) of the samples lie. Sorts them.
inline double Percentile(std::vector<double>& samples, double share) {
  if (samples.empty()) return 0;
  std::sort(samples.begin(), samples.end());
  const auto last = static_cast<double>(samples.size() - 1);
  return samples[static_cast<std::size_t>(std::lround(share * last))];
}

struct Quantiles {
  double median = 0;
  double p99 = 0;
};

inline Quantiles QuantilesOf(std::vector<double> samples) {
  const double median = Percentile(samples, 0.5);
  return {median, Percentile(samples, 0.99)};
}

/// Microseconds of each of `runs` runs.
template <class Work>
Quantiles TimeEach(std::size_t runs, Work&& work) {
  std::vector<double> samples;
  samples.reserve(runs);
  for (std::size_t run = 0; run < runs; ++run) {
    const auto began = Clock::now();
    work();
    samples.push_back(Microseconds(Clock::now() - began));
  }
  return QuantilesOf(std::move(samples));
}

/// What one side of a comparison gave turn by turn. The figure is the median turn, so that a disturbed one counts for nothing.
class Turns {
 public:
  void Add(Quantiles turn) {
    medians_.push_back(turn.median);
    p99s_.push_back(turn.p99);
  }
  double Median() const { return QuantilesOf(medians_).median; }
  double P99() const { return QuantilesOf(p99s_).median; }

 private:
  std::vector<double> medians_, p99s_;
};

/// Work, what it is measured against, both figures, their ratio, and the aim.
inline void PrintRow(const std::string& work, const std::string& unit, double measured, double floor, const std::string& aim) {
  if (floor > 0) {
    std::printf("%-64s %10.2f %10.2f %-6s %8.2f   %s\n", work.c_str(), measured, floor, unit.c_str(), measured / floor, aim.c_str());
  } else {
    std::printf("%-64s %10.2f %10s %-6s %8s   %s\n", work.c_str(), measured, "-", unit.c_str(), "-", aim.c_str());
  }
  static_cast<void>(std::fflush(stdout));
}

inline void PrintHead() {
  std::printf("%-64s %10s %10s %-6s %8s   %s\n", "work", "measured", "floor", "unit", "ratio", "aim");
}

/// Nanoseconds of one run of `work`, the best of several rounds: the machine's other business only ever adds.
template <class Work>
double BestNanoseconds(std::size_t rounds, std::size_t runs, Work&& work) {
  double best = 0;
  for (std::size_t round = 0; round < rounds; ++round) {
    const auto began = Clock::now();
    for (std::size_t run = 0; run < runs; ++run) work();
    const double each = std::chrono::duration<double, std::nano>(Clock::now() - began).count() / static_cast<double>(runs);
    if (round == 0 || each < best) best = each;
  }
  return best;
}

}  // namespace bench
