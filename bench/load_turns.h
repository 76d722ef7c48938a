#pragma once

#include "bench/load.h"
#include "bench/measure.h"
#include "bench/process_cost.h"

#include <sys/types.h>

#include <chrono>
#include <string>
#include <vector>

namespace bench {

/// What one side of a comparison gave its clients turn by turn.
class LoadTurns {
 public:
  void Add(Load& load, pid_t server, std::chrono::milliseconds length);

  double PerSecond() const { return QuantilesOf(perSecond_).median; }
  double CpuMicroseconds() const { return cpu_.Microseconds(); }
  const Turns& Latency() const { return latency_; }

 private:
  std::vector<double> perSecond_;
  Turns latency_;
  CpuTurns cpu_;
};

/// No two turns are equally long: a host that takes the CPU away in a beat of its own would meet the same side each time.
std::chrono::milliseconds TurnLength(int turn);

/// Answers a second, their median and 99th percentile, and the CPU of the server.
void PrintRows(const std::string& work, const LoadTurns& road, const LoadTurns& floor, const std::string& aim, const std::string& p99Aim);

}  // namespace bench
