#include "bench/bare_server.h"
#include "bench/child.h"
#include "bench/load.h"
#include "bench/measure.h"
#include "bench/program.h"

#include <nlohmann/json.hpp>

#include <cstdlib>
#include <string>
#include <vector>

// GET of one element by sixteen kept connections, against a server that has nothing to look up.
namespace {

constexpr std::size_t kConnections = 16;
constexpr std::chrono::milliseconds kTurn{500};

/// What one server gave turn by turn.
struct Side {
  void Turn(bench::Load& load) {
    const auto result = load.Run(kTurn);
    perSecond.push_back(result.perSecond);
    latency.Add(result.microseconds);
  }
  double PerSecond() { return bench::Percentile(perSecond, 0.5); }

  std::vector<double> perSecond{};
  bench::Turns latency{};
};

std::string Body(const std::string& answer) {
  return answer.substr(answer.find("\r\n\r\n") + 4);
}

}  // namespace

int main() {
  bench::PrintHead();
  bench::Program bridge{"charging_management_core"};
  bridge.Start();
  const auto elements = nlohmann::json::parse(Body(bridge.FirstAnswer("/ChargingManagementCore/valueControls")));
  const auto path = elements.at(0).at("uri").get<std::string>();
  const auto answer = bridge.FirstAnswer(path);

  const auto listener = bench::ListenTcp();
  const bench::Child bare{[&] { bench::RunBareServer(listener, answer); }};

  bench::Load bridgeLoad{bridge.Port(), bench::GetRequest(path, bridge.Port()), answer.size(), kConnections};
  bench::Load bareLoad{listener.Port(), bench::GetRequest(path, listener.Port()), answer.size(), kConnections};
  Side road, floor;
  for (int turn = 0; turn < 7; ++turn) {
    road.Turn(bridgeLoad);
    floor.Turn(bareLoad);
  }
  bench::PrintRow("GET of an element, 16 connections / bare Beast server", "1/s", road.PerSecond(), floor.PerSecond(), ">= 0.9");
  bench::PrintRow("  median of the same", "us", road.latency.Median(), floor.latency.Median(), "");
  bench::PrintRow("  p99 of the same", "us", road.latency.P99(), floor.latency.P99(), "<= 1.3");
  bridge.Stop();
}
