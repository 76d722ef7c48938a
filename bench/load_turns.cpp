#include "bench/load_turns.h"

namespace bench {

void LoadTurns::Add(Load& load, pid_t server, std::chrono::milliseconds length) {
  cpu_.Add(server, [&] {
    const auto result = load.Run(length);
    perSecond_.push_back(result.perSecond);
    latency_.Add(result.microseconds);
    return result.answers;
  });
}

std::chrono::milliseconds TurnLength(int turn) {
  return std::chrono::milliseconds{130 + 37 * (turn * 5 % 7)};
}

void PrintRows(const std::string& work, const LoadTurns& road, const LoadTurns& floor, const std::string& aim, const std::string& p99Aim) {
  PrintRow(work, "1/s", road.PerSecond(), floor.PerSecond(), aim);
  PrintRow("  median of the same", "us", road.Latency().Median(), floor.Latency().Median(), "");
  PrintRow("  p99 of the same", "us", road.Latency().P99(), floor.Latency().P99(), p99Aim);
  PrintRow("  CPU of the server for each", "us", road.CpuMicroseconds(), floor.CpuMicroseconds(), "");
}

}  // namespace bench
