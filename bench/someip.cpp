#include "bench/child.h"
#include "bench/fixed_values.h"
#include "bench/measure.h"
#include "bench/payloads.h"
#include "bench/ping_pong.h"
#include "bench/value_controls.h"
#include "binding/generated/charging_management_core_proxy.h"
#include "tests/support/temp_root.h"
#include "xr/com/rport.h"
#include "xr/com/runtime/component_singleton.h"
#include "xr/com/shared_payload.h"
#include "xr/com/wire/header.h"

#include <chrono>
#include <cstdlib>
#include <future>
#include <memory>
#include <string>
#include <thread>
#include <utility>
#include <vector>

// A get over SOME/IP and its reply, as the bridge does it, against the same bytes over blocking sockets.
namespace {

namespace cmc = ylt::services::chargingmanagementcore;
namespace proxy = xr::com::cpp_binding::proxy;
using Service = cmc::ChargingManagementCore;

/// The client's end of the service that the other process offers.
class Client {
 public:
  Client()
      : find_{xr::com::runtime::Component_singleton::get_service_finder().start_find(
            std::string{Service::kName}, "*", [this](auto instances) { return OnInstances(instances); })} {}

  void WaitFor(proxy::Method_ref method) {
    if (!port_) port_ = found_.get_future().get();
    while (!port_->is_available(method)) std::this_thread::sleep_for(std::chrono::milliseconds{5});
  }
  void Get(proxy::Method_ref method, std::size_t size) {
    const auto call = port_->call(method, xr::com::cpp_binding::get_shared_payload(0), [this, size](const proxy::Reply& reply) {
      if (reply.code != 0 || reply.payload.size() != size) std::abort();
      answered_.Come();
    });
    answered_.Wait();
  }

 private:
  bool OnInstances(const std::vector<xr::com::runtime::Service_instance>& instances) {
    if (instances.empty() || std::exchange(reported_, true)) return true;
    found_.set_value(proxy::Rport{instances.front(), Service::kDescription}.port());
    return true;
  }

  bool reported_ = false;
  std::promise<std::shared_ptr<proxy::Client_port>> found_;
  std::shared_ptr<proxy::Client_port> port_;
  bench::Meeting answered_;
  xr::com::cpp_binding::Find_service_handle find_;
};

/// One get and its two floors.
struct Comparison {
  Comparison(const char* protocolName, bench::SocketPair (*pair)(), std::uint16_t index, std::size_t size)
      : protocol{protocolName},
        method{index, proxy::Method_kind::get},
        replySize{size},
        plain{pair(), Sizes()},
        handedOver{pair(), Sizes()} {}

  bench::Sizes Sizes() const { return {xr::com::wire::kHeaderSize, {xr::com::wire::kHeaderSize + replySize}}; }

  void Turn(Client& client) {
    constexpr std::size_t kTrips = 500;
    road.Add(bench::TimeEach(kTrips, [&] { client.Get(method, replySize); }));
    handedOverFloor.Add(bench::TimeEach(kTrips, [&] { handedOver.Trip(); }));
    plainFloor.Add(bench::TimeEach(kTrips, [&] { plain.Trip(); }));
  }
  void Print() const {
    bench::PrintRow("SOME/IP get over " + protocol + " / ping-pong with as many hand-overs", "us", road.Median(), handedOverFloor.Median(),
                    "<= 1.5");
    bench::PrintRow("SOME/IP get over " + protocol + " / plain ping-pong", "us", road.Median(), plainFloor.Median(), "");
  }

  std::string protocol;
  proxy::Method_ref method;
  std::size_t replySize;
  bench::PingPong plain;
  bench::HandedOver handedOver;
  bench::Turns road{}, plainFloor{}, handedOverFloor{};
};

}  // namespace

int main() {
  bench::PrintHead();
  const test_support::TempRoot root;
  ::setenv("ARA_ROOT", root.Path().c_str(), 1);
  const auto views = bench::Popup(cmc::datatypes::DT_ChargingManagementCore_views_visibility::newRequest);
  const auto controls = bench::Payload(bench::ValueControls());

  const bench::Child server{[&] {
    bench::FixedValues{root.DeploymentPath(), {{"views", views}, {"valueControls", controls}}}.Context().run();
  }};
  Comparison udp{"UDP", bench::UdpPair, Service::views::kIndex, views.size()};
  Comparison tcp{"TCP", bench::TcpPair, Service::valueControls::kIndex, controls.size()};

  const xr::com::runtime::Component_singleton runtime{false, ""};
  Client client;
  client.WaitFor(udp.method);
  client.WaitFor(tcp.method);
  for (int turn = 0; turn < 25; ++turn) {
    udp.Turn(client);
    tcp.Turn(client);
  }
  udp.Print();
  tcp.Print();
}
