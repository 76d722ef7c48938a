#include "bench/fixed_values.h"
#include "bench/measure.h"
#include "bench/program.h"
#include "bench/raw_websocket.h"
#include "bench/relay.h"
#include "binding/serialization/serializer.h"
#include "model/records_charging_management_core.h"
#include "xr/com/wire/header.h"

#include <chrono>
#include <stdexcept>
#include <string>
#include <utility>

// From the vehicle's datagram to the client's frame, with the log off and with the log at info, against a relay.
namespace {

namespace cmc = ylt::services::chargingmanagementcore::datatypes;
using Visibility = cmc::DT_ChargingManagementCore_views_visibility;
using namespace std::chrono_literals;

vehicle::Bytes Popup(Visibility visibility) {
  cmc::DT_views_struct view;
  view.type = cmc::DT_ChargingManagementCore_views_type::popup;
  view.content = cmc::DT_ChargingManagementCore_views_content::chargingInformationScreen;
  view.visibility = visibility;
  vehicle::Bytes bytes;
  xr::com::someip::serialization::serialize(bytes, std::vector{view}, {});
  return bytes;
}

/// A bridge between a vehicle and a client which are both on this thread, so that one clock sees both ends.
class Bridge {
 public:
  explicit Bridge(std::string_view program) : program_{program}, vehicle_{program_.Root().DeploymentPath()} {
    program_.Start();
    program_.FirstAnswer("/ChargingManagementCore/views");
    const auto deadline = bench::Clock::now() + 20s;
    while (vehicle_.SubscribedFields() < 16) {
      if (bench::Clock::now() > deadline) throw std::runtime_error("the bridge has not subscribed to all fields");
      vehicle_.Context().run_for(20ms);
    }
    client_ = bench::ConnectTcp(program_.Port());
    bench::Upgrade(client_, reader_, program_.Port());
    bench::SendText(client_, R"({"action":"subscribe","path":"/ChargingManagementCore/views","requestId":"1"})");
    WaitFor("snapshot");
    Notify(Visibility::newRequest);
    WaitFor("added");
  }

  /// One notification that changes the view, up to its frame.
  void Trip() {
    Notify(std::exchange(
        next_, next_ == Visibility::requestedViewVisible ? Visibility::requestedViewObstructed : Visibility::requestedViewVisible));
    frameSize_ = reader_.Next().size();
  }
  /// Lets the vehicle answer what has come meanwhile.
  void Breathe() { vehicle_.Context().poll(); }
  std::size_t FrameSize() const { return frameSize_; }

 private:
  void Notify(Visibility visibility) {
    vehicle_.Set("views", Popup(visibility));
    vehicle_.Notify("views");
  }
  void WaitFor(std::string_view word) {
    while (reader_.Next().find(word) == std::string_view::npos) {
    }
  }

  bench::Program program_;
  bench::FixedValues vehicle_;
  bench::Socket client_;
  bench::FrameReader reader_{client_};
  Visibility next_ = Visibility::requestedViewVisible;
  std::size_t frameSize_ = 0;
};

constexpr std::size_t kTripsPerTurn = 300;

}  // namespace

int main() {
  bench::PrintHead();
  Bridge quiet{"quiet_bridge"}, logging{"charging_management_core"};
  quiet.Trip();
  const auto datagramSize = xr::com::wire::kHeaderSize + Popup(Visibility::newRequest).size();
  bench::Relay twoQueues{bench::Relay::Road::twoQueues, datagramSize, quiet.FrameSize()};
  bench::Relay oneThread{bench::Relay::Road::oneThread, datagramSize, quiet.FrameSize()};

  bench::Turns quietRoad, loggingRoad, twoQueuesFloor, oneThreadFloor;
  const auto turn = [](bench::Turns& turns, auto& trips) { turns.Add(bench::TimeEach(kTripsPerTurn, [&] { trips.Trip(); })); };
  for (int i = 0; i < 25; ++i) {
    turn(quietRoad, quiet);
    turn(twoQueuesFloor, twoQueues);
    turn(loggingRoad, logging);
    turn(oneThreadFloor, oneThread);
    for (auto* bridge : {&quiet, &logging}) bridge->Breathe();
  }
  bench::PrintRow("datagram to frame, log off / relay of two queues, median", "us", quietRoad.Median(), twoQueuesFloor.Median(), "<= 1.3");
  bench::PrintRow("  p99 of the same", "us", quietRoad.P99(), twoQueuesFloor.P99(), "<= 1.3");
  bench::PrintRow("datagram to frame, log off / relay of one thread, median", "us", quietRoad.Median(), oneThreadFloor.Median(), "");
  bench::PrintRow("  p99 of the same", "us", quietRoad.P99(), oneThreadFloor.P99(), "");
  bench::PrintRow("datagram to frame, log to a file / log off, median", "us", loggingRoad.Median(), quietRoad.Median(), "");
  bench::PrintRow("  p99 of the same", "us", loggingRoad.P99(), quietRoad.P99(), "");
}
