#include "bench/bridge.h"
#include "bench/measure.h"
#include "bench/payloads.h"
#include "bench/raw_websocket.h"
#include "bench/relay.h"
#include "bench/value_controls.h"
#include "xr/com/wire/header.h"

#include <cstdint>
#include <string>

// From the vehicle's message to the client's frames, with the log off and with the log at info, against a relay.
namespace {

/// What the vehicle tells over and over, each time with other values.
struct Work {
  std::string name;
  std::string field;
  bench::SocketPair (*pair)();  // of the field's protocol
  std::size_t frames;
  vehicle::Bytes (*payload)(std::uint32_t time);
  std::string aim;
};

/// A view that is visible and obstructed in turn.
vehicle::Bytes View(std::uint32_t time) {
  using Visibility = ylt::services::chargingmanagementcore::datatypes::DT_ChargingManagementCore_views_visibility;
  if (time == 0) return bench::Popup(Visibility::newRequest);  // it enters
  return bench::Popup(time % 2 == 0 ? Visibility::requestedViewObstructed : Visibility::requestedViewVisible);
}

vehicle::Bytes Controls(std::uint32_t time) {
  return bench::Payload(bench::ValueControls(time));
}

class Road {
 public:
  Road(bench::Bridge& bridge, const Work& work)
      : work_{work}, bridge_{bridge}, client_{bench::Subscribed(bridge.program.Port(), "/ChargingManagementCore/" + work.field)} {
    Trip();
  }
  /// One notification up to the last of its frames.
  void Trip() {
    bridge_.vehicle.Notify(work_.field, work_.payload(times_++));
    textSize_ = 0;
    for (std::size_t frame = 0; frame < work_.frames; ++frame) textSize_ += reader_.Next().size();
  }
  bench::Relay::Shape Shape() const {
    return {xr::com::wire::kHeaderSize + work_.payload(times_).size(), textSize_ / work_.frames, work_.frames};
  }

 private:
  const Work& work_;
  bench::Bridge& bridge_;
  bench::Socket client_;
  bench::FrameReader reader_{client_};
  std::uint32_t times_ = 0;
  std::size_t textSize_ = 0;  // of all frames of a trip
};

constexpr std::size_t kTripsPerTurn = 300;

void Compare(const Work& work) {
  bench::Bridge quietBridge{"quiet_bridge"}, loggingBridge{"charging_management_core"};
  bench::Settle({&quietBridge, &loggingBridge});
  Road quiet{quietBridge, work}, logging{loggingBridge, work};
  bench::Relay twoQueues{bench::Relay::Road::twoQueues, work.pair(), quiet.Shape()};
  bench::Relay oneThread{bench::Relay::Road::oneThread, work.pair(), quiet.Shape()};

  bench::Turns quietRoad, loggingRoad, twoQueuesFloor, oneThreadFloor;
  const auto turn = [](bench::Turns& turns, auto& trips) { turns.Add(bench::TimeEach(kTripsPerTurn, [&] { trips.Trip(); })); };
  for (int i = 0; i < 25; ++i) {
    turn(quietRoad, quiet);
    turn(twoQueuesFloor, twoQueues);
    turn(loggingRoad, logging);
    turn(oneThreadFloor, oneThread);
  }
  const auto print = [&](const char* what, const bench::Turns& road, const bench::Turns& floor, const std::string& aim) {
    bench::PrintRow(work.name + what + ", median", "us", road.Median(), floor.Median(), aim);
    bench::PrintRow("  p99 of the same", "us", road.P99(), floor.P99(), aim);
  };
  print(", log off / relay of two queues", quietRoad, twoQueuesFloor, work.aim);
  print(", log off / relay of one thread", quietRoad, oneThreadFloor, "");
  print(", log to a file / log off", loggingRoad, quietRoad, "");
}

}  // namespace

int main() {
  bench::PrintHead();
  Compare({"datagram to frame", "views", bench::UdpPair, 1, View, "<= 1.3"});
  Compare({"17 controls to 14 frames", "valueControls", bench::TcpPair, bench::kValueControlObjects, Controls, "<= 2"});
}
