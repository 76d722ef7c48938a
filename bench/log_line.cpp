#include <cstddef>
#include <cstdlib>

#include "bench/measure.h"

#include "ara/log/logging.h"

// What one info line costs its caller, the writer and its file behind it.
int main() {
  bench::PrintHead();
  setenv("ARA_LOG", "file:/dev/null", 1);
  ara::log::InitLogging("BNCH", "benchmark", ara::log::LogLevel::kInfo, ara::log::LogMode::kRemote, "");
  const auto& logger = ara::log::CreateLogger("BNCH", "benchmark");
  // Bursts that fit the ring, each written out before the next: the caller's cost, not the writer's.
  double best = 0;
  for (int burst = 0; burst < 50; ++burst) {
    const double now = bench::BestNanoseconds(1, 2000, [&logger] {
      logger.LogInfo() << "[CommMngr][Someip -> Zuva] View [type] {value,mappedvalue} = {" << 3 << ","
                       << "itSystemScreen"
                       << "}";
    });
    if (burst == 0 || now < best) best = now;
    ara::log::DrainLogging();
  }
  bench::PrintRow("one log line at info, on the caller", "ns", best, 0, "<= 200 ns");
  const double off = bench::BestNanoseconds(10, 100000, [&logger] { logger.LogDebug() << "never " << 3; });
  bench::PrintRow("one log line at a level that is off", "ns", off, 0, "");
}
