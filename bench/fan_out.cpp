#include "bench/bare_server.h"
#include "bench/bridge.h"
#include "bench/channel.h"
#include "bench/child.h"
#include "bench/crowd.h"
#include "bench/measure.h"
#include "bench/payloads.h"
#include "bench/process_cost.h"
#include "bench/raw_websocket.h"
#include "bench/stay_on.h"
#include "bench/value_controls.h"
#include "tests/support/process.h"
#include "xr/com/wire/header.h"

#include <cstdint>
#include <functional>
#include <string>
#include <utility>
#include <vector>

// From the vehicle's message to the last of a thousand clients, against a server that has one frame ready for all of them.
namespace {

constexpr std::size_t kClients = 1000;
constexpr const char* kPath = "/ChargingManagementCore/valueControls";

/// Of the seventeen only the last one has another value each time, which has always four digits, so that all frames are equally long.
vehicle::Bytes OneChange(std::uint32_t time) {
  auto controls = bench::ValueControls();
  controls.back().currentValue = 1000 + time % 1000;
  return bench::Payload(controls);
}

/// What one client is told of one change, when all objects have their first values.
std::string TextOf(bench::Bridge& bridge) {
  const auto client = bench::Subscribed(bridge.program.Port(), kPath);
  bench::FrameReader reader{client};
  bridge.vehicle.Notify("valueControls", OneChange(0));
  for (std::size_t object = 0; object < bench::kValueControlObjects; ++object) reader.Next();
  bridge.vehicle.Notify("valueControls", OneChange(1));
  return std::string{reader.Next()};
}

template <class Connect>
std::vector<bench::Channel> Clients(bench::Bridge& bridge, Connect&& connect) {
  std::vector<bench::Channel> clients;
  while (clients.size() < kClients) {
    clients.emplace_back(connect());
    bridge.vehicle.Context().poll();  // its offers must not run out meanwhile
  }
  return clients;
}

/// One of the two servers with its clients, and what it gave turn by turn.
class Side {
 public:
  Side(pid_t server, std::vector<bench::Channel> clients, const std::string& text, std::function<void()> trigger)
      : server_{server}, crowd_{std::move(clients), bench::ServerFrame(text).size(), Front(text)}, trigger_{std::move(trigger)} {}

  void Turn() {
    constexpr std::size_t kTrips = 20;
    cpu_.Add(server_, [this] {
      latency_.Add(bench::TimeEach(kTrips, [this] { Trip(); }));
      return kTrips * kClients;
    });
  }
  const bench::Turns& Latency() const { return latency_; }
  double CpuMicroseconds() const { return cpu_.Microseconds(); }

 private:
  /// The head of each frame, and with it the size.
  static std::string Front(const std::string& text) {
    const auto frame = bench::ServerFrame(text);
    return {frame.begin(), frame.end() - static_cast<std::ptrdiff_t>(text.size())};
  }
  void Trip() {
    for (auto& client : crowd_.Members()) crowd_.Expect(client);
    trigger_();
    for (auto open = kClients; open != 0;) crowd_.Take([&](const auto&) { --open; });
  }

  pid_t server_;
  bench::Crowd crowd_;
  std::function<void()> trigger_;
  bench::Turns latency_;
  bench::CpuTurns cpu_;
};

}  // namespace

int main() {
  bench::PrintHead();
  test_support::RaiseFileLimit();  // for both crowds at once
  bench::StayOn(1);
  bench::Bridge bridge{"quiet_bridge", {{"limits", {{"connections", kClients + 10}, {"idleSeconds", 3600}}}}};
  bench::Settle({&bridge});
  const auto text = TextOf(bridge);

  const auto listener = bench::ListenTcp();
  const auto trigger = bench::TcpPair();
  const std::vector<unsigned char> message(xr::com::wire::kHeaderSize + OneChange(0).size());
  const bench::Child bare{[&] { bench::RunBareFanOut(listener, trigger.server, message.size(), text); }};
  bench::StayOn(0);

  std::uint32_t times = 1;
  Side road{bridge.program.Pid(), Clients(bridge, [&] { return bench::Subscribed(bridge.program.Port(), kPath); }), text,
            [&] { bridge.vehicle.Notify("valueControls", OneChange(++times)); }};
  Side floor{bare.Pid(), Clients(bridge, [&] { return bench::Upgraded(listener.Port()); }), text, [&] { trigger.client.Send(message); }};
  for (int turn = 0; turn < 25; ++turn) {
    road.Turn();
    floor.Turn();
  }
  bench::PrintRow("message to the last of 1,000 clients / ready frame, median", "us", road.Latency().Median(), floor.Latency().Median(),
                  "<= 1.3");
  bench::PrintRow("  p99 of the same", "us", road.Latency().P99(), floor.Latency().P99(), "");
  bench::PrintRow("  CPU of the server for each client", "us", road.CpuMicroseconds(), floor.CpuMicroseconds(), "");
}
