#include "bench/answer.h"
#include "bench/child.h"
#include "bench/fixed_values.h"
#include "bench/load.h"
#include "bench/load_turns.h"
#include "bench/measure.h"
#include "bench/payloads.h"
#include "bench/program.h"
#include "bench/sockets.h"
#include "bench/stay_on.h"
#include "bench/writes.h"

#include <poll.h>

#include <array>
#include <chrono>
#include <cstddef>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

// GETs while sixty-four clients wait for a vehicle that answers no set, against the same GETs without them.
namespace {

using namespace std::chrono_literals;

constexpr std::size_t kWriters = 64;
constexpr std::size_t kConnections = 16;
/// Within the second after which the first of the writers are refused: all of them wait from the beginning of a turn to its end.
constexpr auto kTurn = 700ms;

/// Writers that all wait at once.
class Writers {
 public:
  explicit Writers(const bench::Program& bridge) {
    for (const auto& write : bench::WritesOfAllKinds(bridge, kWriters)) {
      requests_.push_back(write.Request(0));
      sockets_.push_back(bench::ConnectTcp(bridge.Port()));
    }
  }
  void Ask() {
    for (std::size_t i = 0; i < kWriters; ++i) sockets_[i].Send(bench::AsBytes(requests_[i]));
    std::this_thread::sleep_for(50ms);  // the requests are read before the turn begins
  }
  /// Those that have waited for the vehicle get an internal error, the others had no thread within a second.
  void ExpectRefusals() {
    std::vector<pollfd> polled;
    for (const auto& socket : sockets_) polled.push_back({socket.Number(), POLLIN, 0});
    if (::poll(polled.data(), polled.size(), 0) != 0) throw std::runtime_error("a writer was answered before the turn was over");
    for (const auto& socket : sockets_) {
      bench::Answer answer;
      std::array<unsigned char, 4096> room;
      while (!answer.Take({reinterpret_cast<const char*>(room.data()), socket.Receive(room)})) {
      }
      if (answer.Status() != 500 && answer.Status() != 503) throw std::runtime_error("not refused: " + answer.Text());
    }
  }

 private:
  std::vector<std::string> requests_;
  std::vector<bench::Socket> sockets_;
};

}  // namespace

int main() {
  bench::PrintHead();
  bench::StayOn(1);
  bench::Program bridge{"charging_management_core"};
  bridge.Start();
  const bench::Child vehicle{[&] {
    using Visibility = ylt::services::chargingmanagementcore::datatypes::DT_ChargingManagementCore_views_visibility;
    bench::FixedValues values{bridge.Root().DeploymentPath(), {{"views", bench::Popup(Visibility::newRequest)}}};
    values.IgnoreSets();
    values.Context().run();
  }};
  bench::StayOn(0);
  const auto path = bridge.FirstElements("/ChargingManagementCore/valueControls")[0]["uri"].get<std::string>();
  bench::Load load{bridge.Port(), bench::GetRequest(path, bridge.Port()), bridge.FirstAnswer(path).size(), kConnections};
  Writers writers{bridge};

  bench::LoadTurns with, without;
  for (int turn = 0; turn < 15; ++turn) {
    writers.Ask();
    with.Add(load, bridge.Pid(), kTurn);
    writers.ExpectRefusals();
    without.Add(load, bridge.Pid(), kTurn);
  }
  bench::PrintRows("GETs while 64 writers wait for a mute vehicle / without them", with, without, ">= 0.95", "");
  bridge.Stop();
}
