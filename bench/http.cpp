#include "bench/bare_server.h"
#include "bench/child.h"
#include "bench/fixed_values.h"
#include "bench/load.h"
#include "bench/load_turns.h"
#include "bench/measure.h"
#include "bench/program.h"
#include "bench/stay_on.h"

#include <nlohmann/json.hpp>

#include <chrono>
#include <stdexcept>
#include <string>
#include <thread>

// GET of an element, a resource and a composite by sixteen kept connections, against a server that has nothing to look up.
namespace {

using namespace std::chrono_literals;

constexpr std::size_t kConnections = 16;

std::size_t Count(const std::string& text, const std::string& word) {
  std::size_t count = 0;
  for (auto at = text.find(word); at != std::string::npos; at = text.find(word, at + 1)) ++count;
  return count;
}

std::string Body(const std::string& answer) {
  return answer.substr(answer.find("\r\n\r\n") + 4);
}

/// What is asked for, and what both servers gave for it.
struct Comparison {
  std::string name;
  std::string aim, p99Aim;
  bench::LoadTurns road{}, floor{};

  void Turns(const bench::Program& bridge, const std::string& path);
  void Print() const;
};

void Comparison::Turns(const bench::Program& bridge, const std::string& path) {
  bench::StayOn(1);
  const auto answer = bridge.FirstAnswer(path);
  const auto listener = bench::ListenTcp();
  const bench::Child bare{[&] { bench::RunBareServer(listener, answer); }};

  bench::StayOn(0);
  bench::Load bridgeLoad{bridge.Port(), bench::GetRequest(path, bridge.Port()), answer.size(), kConnections};
  bench::Load bareLoad{listener.Port(), bench::GetRequest(path, listener.Port()), answer.size(), kConnections};
  for (int turn = 0; turn < 5; ++turn) {
    road.Add(bridgeLoad, bridge.Pid(), bench::TurnLength(2 * turn));
    floor.Add(bareLoad, bare.Pid(), bench::TurnLength(2 * turn + 1));
  }
}

void Comparison::Print() const {
  bench::PrintRows("GET of " + name + ", 16 connections / bare Beast server", road, floor, aim, p99Aim);
}

/// The answer for a resource when the vehicle's values are there: so many elements, embedded ones too, have the property.
std::string Filled(const bench::Program& bridge, const std::string& resource, const std::string& property, std::size_t count) {
  const auto deadline = bench::Clock::now() + 20s;
  for (;;) {
    auto answer = bridge.FirstAnswer(resource);
    if (Count(answer, '"' + property + '"') == count) return answer;
    if (bench::Clock::now() > deadline) throw std::runtime_error("not all values have reached " + resource);
    std::this_thread::sleep_for(5ms);
  }
}

std::string FirstElement(const std::string& answer) {
  return nlohmann::json::parse(Body(answer)).at(0).at("uri").get<std::string>();
}

struct Comparisons {
  Comparison element{"an element", ">= 0.9", "<= 1.3"}, resource{"21 elements", ">= 0.8", ""}, composite{"13 in one", ">= 0.8", ""};
};

/// Both servers started anew, since one that happens to lie badly in memory or caches keeps that as long as it runs.
void Round(Comparisons& comparisons) {
  bench::StayOn(1);
  bench::Program bridge{"charging_management_core"};
  bridge.Start();
  const bench::Child vehicle{[&] { bench::FixedValues{bridge.Root().DeploymentPath(), bench::ValuesOfEveryField()}.Context().run(); }};
  const std::string service = "/ChargingManagementCore";
  const auto controls = Filled(bridge, service + "/valueControls", "currentValue", 14);
  Filled(bridge, service + "/valueIndications", "currentValue", 21);
  const auto process = Filled(bridge, service + "/chargingProcessInformation", "evseid", 1);
  comparisons.element.Turns(bridge, FirstElement(controls));
  comparisons.resource.Turns(bridge, service + "/valueIndications");
  comparisons.composite.Turns(bridge, FirstElement(process));
  bridge.Stop();
}

}  // namespace

int main() {
  bench::PrintHead();
  Comparisons comparisons;
  for (int round = 0; round < 7; ++round) Round(comparisons);
  comparisons.element.Print();
  comparisons.resource.Print();
  comparisons.composite.Print();
}
