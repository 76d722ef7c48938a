#include "bench/bare_server.h"
#include "bench/child.h"
#include "bench/load.h"
#include "bench/measure.h"
#include "bench/process_cost.h"
#include "bench/program.h"

#include <sched.h>
#include <nlohmann/json.hpp>

#include <cstdlib>
#include <string>
#include <vector>

// GET of one element by sixteen kept connections, against a server that has nothing to look up.
namespace {

constexpr std::size_t kConnections = 16;

/// No two turns are equally long: a host that takes the CPU away in a beat of its own would meet the same server each time.
std::chrono::milliseconds TurnLength(int turn) {
  return std::chrono::milliseconds{130 + 37 * (turn * 5 % 7)};
}

/// What one of the two servers gave turn by turn.
class Side {
 public:
  void Turn(bench::Load& load, pid_t server, std::chrono::milliseconds length) {
    const double before = bench::CpuNanoseconds(server);
    const auto result = load.Run(length);
    cpu_.push_back((bench::CpuNanoseconds(server) - before) / 1000 / result.answers);
    perSecond_.push_back(result.perSecond);
    latency_.Add(result.microseconds);
  }
  double PerSecond() const { return bench::QuantilesOf(perSecond_).median; }
  double CpuMicroseconds() const { return bench::QuantilesOf(cpu_).median; }
  const bench::Turns& Latency() const { return latency_; }

 private:
  std::vector<double> perSecond_, cpu_;
  bench::Turns latency_;
};

/// From now on this process, and whatever it starts, runs on this CPU only. Without that the scheduler decides which of the two servers
/// shares one with the clients, and sticks to it. Nothing happens on a machine that has no such CPU.
void StayOn(unsigned cpu) {
  cpu_set_t set;
  CPU_ZERO(&set);
  CPU_SET(cpu, &set);
  ::sched_setaffinity(0, sizeof set, &set);
}

std::string Body(const std::string& answer) {
  return answer.substr(answer.find("\r\n\r\n") + 4);
}

/// Both servers started anew, since one that happens to lie badly in memory or caches keeps that as long as it runs.
void Round(Side& road, Side& floor) {
  StayOn(1);
  bench::Program bridge{"charging_management_core"};
  bridge.Start();
  const auto elements = nlohmann::json::parse(Body(bridge.FirstAnswer("/ChargingManagementCore/valueControls")));
  const auto path = elements.at(0).at("uri").get<std::string>();
  const auto answer = bridge.FirstAnswer(path);
  const auto listener = bench::ListenTcp();
  const bench::Child bare{[&] { bench::RunBareServer(listener, answer); }};

  StayOn(0);
  bench::Load bridgeLoad{bridge.Port(), bench::GetRequest(path, bridge.Port()), answer.size(), kConnections};
  bench::Load bareLoad{listener.Port(), bench::GetRequest(path, listener.Port()), answer.size(), kConnections};
  for (int turn = 0; turn < 5; ++turn) {
    road.Turn(bridgeLoad, bridge.Pid(), TurnLength(2 * turn));
    floor.Turn(bareLoad, bare.Pid(), TurnLength(2 * turn + 1));
  }
  bridge.Stop();
}

}  // namespace

int main() {
  bench::PrintHead();
  Side road, floor;
  for (int round = 0; round < 7; ++round) Round(road, floor);
  bench::PrintRow("GET of an element, 16 connections / bare Beast server", "1/s", road.PerSecond(), floor.PerSecond(), ">= 0.9");
  bench::PrintRow("  median of the same", "us", road.Latency().Median(), floor.Latency().Median(), "");
  bench::PrintRow("  p99 of the same", "us", road.Latency().P99(), floor.Latency().P99(), "<= 1.3");
  bench::PrintRow("  CPU of the server for each", "us", road.CpuMicroseconds(), floor.CpuMicroseconds(), "");
}
