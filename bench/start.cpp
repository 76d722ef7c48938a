#include "bench/fixed_values.h"
#include "bench/measure.h"
#include "bench/program.h"

#include <filesystem>
#include <fstream>
#include <stdexcept>
#include <string>
#include <vector>

// How soon the bridge answers, and what it costs when nothing happens.
namespace {

using namespace std::chrono_literals;

double MillisecondsToFirstAnswer() {
  bench::Program bridge{"charging_management_core"};
  const auto began = bench::Clock::now();
  bridge.Start();
  bridge.FirstAnswer("/ChargingManagementCore/valueControls");
  const auto taken = bench::Clock::now() - began;
  bridge.Stop();
  return bench::Microseconds(taken) / 1000;
}

/// Of all threads of a process since its start, waiting not counted.
double CpuNanoseconds(pid_t process) {
  double sum = 0;
  for (const auto& thread : std::filesystem::directory_iterator{"/proc/" + std::to_string(process) + "/task"}) {
    double onCpu = 0;
    std::ifstream{thread.path() / "schedstat"} >> onCpu;
    sum += onCpu;
  }
  return sum;
}

double ResidentMegabytes(pid_t process) {
  std::ifstream status{"/proc/" + std::to_string(process) + "/status"};
  for (std::string word; status >> word;) {
    double kilobytes = 0;
    if (word == "VmRSS:" && status >> kilobytes) return kilobytes / 1024;
  }
  throw std::runtime_error("no resident memory in the process's status");
}

}  // namespace

int main() {
  bench::PrintHead();
  std::vector<double> starts;
  for (int i = 0; i < 9; ++i) starts.push_back(MillisecondsToFirstAnswer());
  bench::PrintRow("start to the first answered GET", "ms", bench::Percentile(starts, 0.5), 0, "<= 150 ms");

  // At rest with a vehicle that is there and says nothing but its offers.
  bench::Program bridge{"charging_management_core"};
  bench::FixedValues vehicle{bridge.Root().DeploymentPath()};
  bridge.Start();
  vehicle.Context().run_for(5s);
  if (vehicle.SubscribedFields() < 16) throw std::runtime_error("the bridge has not subscribed to all fields");
  constexpr std::chrono::seconds kRest{10};
  const double before = CpuNanoseconds(bridge.Pid());
  vehicle.Context().run_for(kRest);
  const double share = (CpuNanoseconds(bridge.Pid()) - before) / std::chrono::duration<double, std::nano>(kRest).count();
  bench::PrintRow("resident memory at rest", "MB", ResidentMegabytes(bridge.Pid()), 0, "<= 20 MB");
  bench::PrintRow("CPU at rest", "%", 100 * share, 0, "< 0.1 %");
  bridge.Stop();
}
