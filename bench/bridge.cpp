#include "bench/bridge.h"

#include "bench/measure.h"

#include <algorithm>
#include <chrono>
#include <stdexcept>

namespace bench {

using namespace std::chrono_literals;

Bridge::Bridge(std::string_view name, const nlohmann::json& settings) : program{name, settings}, vehicle{program.Root().DeploymentPath()} {
  program.Start();
  program.FirstAnswer("/ChargingManagementCore");
}

void Settle(std::initializer_list<Bridge*> bridges) {
  const auto deadline = Clock::now() + 30s;
  while (!std::all_of(bridges.begin(), bridges.end(), [](const auto* bridge) { return bridge->vehicle.IsKnown(); })) {
    if (Clock::now() > deadline) throw std::runtime_error("the bridge does not read all fields");
    for (auto* bridge : bridges) bridge->vehicle.Context().run_for(20ms);
  }
}

}  // namespace bench
