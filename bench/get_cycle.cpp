#include "bench/child.h"
#include "bench/fixed_values.h"
#include "bench/measure.h"
#include "bench/ping_pong.h"
#include "bench/process_cost.h"
#include "commmngr/communications_manager.h"
#include "rest/server/trov_zuva_server.h"
#include "someip/cmc/charging_management_core_listener.h"
#include "someip/cmc/charging_management_core_proxy_wrapper.h"
#include "tests/support/temp_root.h"
#include "xr/com/exceptions.h"
#include "xr/com/runtime/component_singleton.h"
#include "xr/com/wire/header.h"

#include "ara/log/logging.h"

#include <boost/variant/apply_visitor.hpp>

#include <chrono>
#include <cstdlib>
#include <map>
#include <memory>
#include <stdexcept>
#include <string>
#include <thread>

// The fifteen gets of a cycle, all answered, against fifteen round trips that are under way at once. The program makes a cycle every two
// minutes; here its parts are wired as it does it, and the benchmark's thread is the one that fetches.
namespace {

using namespace std::chrono_literals;
using trov::chargingManagementCoreListener::kGetOrder;

class Bridge {
 public:
  Bridge();
  ~Bridge();
  Bridge(const Bridge&) = delete;
  Bridge& operator=(const Bridge&) = delete;

  /// Returns when a whole cycle can be answered.
  void WaitForVehicle();
  /// The gets, each with records in its answer.
  void Get();
  /// A cycle as it is: the gets, and what they bring taken to the REST elements.
  void Fetch() { listener_->FetchData(); }

 private:
  xr::com::runtime::Component_singleton runtime_{false, ""};
  std::shared_ptr<trov::zuvaServer::TROVZuVaServer> server_ = std::make_shared<trov::zuvaServer::TROVZuVaServer>(
      "charging_management_core", "/opt/TROV__PLNT5_Sys_Adaptive_01/etc/charging_management_core_conf.json");
  std::shared_ptr<trov::chargingManagementCoreListener::ChargingManagementCoreProxyWrapper> wrapper_ =
      std::make_shared<trov::chargingManagementCoreListener::ChargingManagementCoreProxyWrapper>();
  std::shared_ptr<trov::chargingManagementCoreListener::ChargingManagementCoreListener> listener_ =
      std::make_shared<trov::chargingManagementCoreListener::ChargingManagementCoreListener>(wrapper_);
  std::shared_ptr<trov::commMngr::CommunicationsManager> mediator_ = std::make_shared<trov::commMngr::CommunicationsManager>();
};

Bridge::Bridge() {
  server_->SetCommunicationsManager(mediator_);
  listener_->SetCommunicationsManager(mediator_);
  mediator_->SetZuva(server_);
  mediator_->SetSomeIp(listener_);
  server_->StartServer();
}

Bridge::~Bridge() {
  server_->StopServer();
  server_->SetCommunicationsManager(nullptr);
  listener_->SetCommunicationsManager(nullptr);
  mediator_->SetZuva(nullptr);
  mediator_->SetSomeIp(nullptr);
}

void Bridge::WaitForVehicle() {
  const auto deadline = bench::Clock::now() + 20s;
  for (;;) {
    try {
      return Get();
    } catch (const xr::com::Service_not_available_exception&) {
      if (bench::Clock::now() > deadline) throw;
    }
    std::this_thread::sleep_for(20ms);
  }
}

void Bridge::Get() {
  wrapper_->PrepareGets();
  for (const auto resource : kGetOrder) {
    const auto answer = wrapper_->SomeIp_Get(resource, 2s);
    if (boost::apply_visitor([](const auto& records) { return records.empty(); }, answer))
      throw std::runtime_error("a get without an answer");
  }
}

/// What one kind of cycle took turn by turn, and what it cost the side that answers.
struct Side {
  template <class Cycle>
  void Turn(pid_t server, Cycle&& cycle) {
    constexpr std::size_t kCycles = 100;
    serverCpu.Add(server, [&] {
      latency.Add(bench::TimeEach(kCycles, cycle));
      return kCycles;
    });
  }

  bench::Turns latency;
  bench::CpuTurns serverCpu;
};

/// As many round trips as gets, with as many bytes.
bench::Sizes SizesOf(const std::map<std::string, vehicle::Bytes>& values) {
  bench::Sizes sizes{xr::com::wire::kHeaderSize, {}};
  for (const auto& [field, payload] : values) {
    if (field != "targetSocChargings") sizes.replies.push_back(xr::com::wire::kHeaderSize + payload.size());  // of the other service
  }
  if (sizes.replies.size() != kGetOrder.size()) throw std::logic_error("not a value for each get");
  return sizes;
}

}  // namespace

int main() {
  bench::PrintHead();
  const test_support::TempRoot root;
  ::setenv("ARA_ROOT", root.Path().c_str(), 1);
  const auto values = bench::ValuesOfEveryField();
  const bench::Child vehicle{[&] { bench::FixedValues{root.DeploymentPath(), values}.Context().run(); }};
  bench::HandedOver handedOver{bench::UdpPair(), SizesOf(values)};
  bench::PingPong plain{bench::UdpPair(), SizesOf(values)};

  ara::log::InitLogging("BNCH", "benchmark", ara::log::LogLevel::kOff, ara::log::LogMode::kConsole, "");
  Bridge bridge;
  bridge.WaitForVehicle();
  Side gets, cycles, handedOverFloor, plainFloor;
  for (int turn = 0; turn < 25; ++turn) {
    gets.Turn(vehicle.Pid(), [&] { bridge.Get(); });
    handedOverFloor.Turn(handedOver.ServerPid(), [&] { handedOver.Trip(); });
    cycles.Turn(vehicle.Pid(), [&] { bridge.Fetch(); });
    plainFloor.Turn(plain.ServerPid(), [&] { plain.Trip(); });
  }
  const auto print = [](const char* work, const Side& side, const Side& floor, const char* aim) {
    bench::PrintRow(work, "us", side.latency.Median(), floor.latency.Median(), aim);
  };
  print("15 gets, all answered / 15 round trips at once", gets, handedOverFloor, "<= 1.5");
  bench::PrintRow("  CPU of the vehicle, and of the other side", "us", gets.serverCpu.Microseconds(),
                  handedOverFloor.serverCpu.Microseconds(), "");
  print("  and taken to the REST elements", cycles, handedOverFloor, "");
  print("15 gets, all answered / 15 plain round trips at once", gets, plainFloor, "");
}
