#include "bench/bridge.h"
#include "bench/measure.h"
#include "bench/process_cost.h"
#include "bench/program.h"

#include "tests/support/process.h"

#include <chrono>
#include <vector>

// How soon the bridge answers, and what it costs when nothing happens.
namespace {

double MillisecondsToFirstAnswer() {
  bench::Program bridge{"charging_management_core"};
  const auto began = bench::Clock::now();
  bridge.Start();
  bridge.FirstAnswer("/ChargingManagementCore/valueControls");
  const auto taken = bench::Clock::now() - began;
  bridge.Stop();
  return bench::Microseconds(taken) / 1000;
}

}  // namespace

int main() {
  bench::PrintHead();
  std::vector<double> starts(9);
  for (auto& start : starts) start = MillisecondsToFirstAnswer();
  bench::PrintRow("start to the first answered GET", "ms", bench::Percentile(starts, 0.5), 0, "<= 150 ms");

  // At rest with a vehicle that is there and says nothing but its offers.
  bench::Bridge bridge{"charging_management_core"};
  bench::Settle({&bridge});
  constexpr std::chrono::seconds kRest{10};
  const double before = bench::CpuNanoseconds(bridge.program.Pid());
  bridge.vehicle.Context().run_for(kRest);
  const double share = (bench::CpuNanoseconds(bridge.program.Pid()) - before) / std::chrono::duration<double, std::nano>(kRest).count();
  bench::PrintRow("resident memory at rest", "MB", test_support::ResidentMegabytes(bridge.program.Pid()), 0, "<= 20 MB");
  bench::PrintRow("CPU at rest", "%", 100 * share, 0, "< 0.1 %");
  bridge.program.Stop();
}
