#include "bench/bare_server.h"
#include "bench/child.h"
#include "bench/fixed_values.h"
#include "bench/measure.h"
#include "bench/payloads.h"
#include "bench/ping_pong.h"
#include "bench/process_cost.h"
#include "bench/program.h"
#include "bench/sockets.h"
#include "xr/com/wire/header.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

// A client's write of a value, which the vehicle takes at once, with the log off and with the log at info, against a server that has a
// round trip of as many bytes with another process before it answers.
namespace {

namespace cmc = ylt::services::chargingmanagementcore::datatypes;

constexpr std::string_view kType = "immediateChargingOptionsTargetSoc";

/// A client that has one request answered after the other, all answers of one size.
class Client {
 public:
  Client(std::uint16_t port, std::size_t answerSize) : socket_{bench::ConnectTcp(port)}, room_(answerSize) {}
  void Trip(const std::string& request) {
    constexpr std::string_view kGood = "HTTP/1.1 200";
    socket_.Send(bench::AsBytes(request));
    socket_.ReceiveAll(room_);
    if (std::string_view{reinterpret_cast<const char*>(room_.data()), kGood.size()} != kGood)
      throw std::runtime_error("a write was not answered with 200");
  }

 private:
  bench::Socket socket_;
  std::vector<unsigned char> room_;
};

/// A bridge with a vehicle of its own, and what it answers to a write.
class Bridge {
 public:
  explicit Bridge(std::string_view name) : program_{name} {
    program_.Start();
    for (const auto& element : program_.FirstElements("/ChargingManagementCore/valueControls"))
      if (element.value("type", "") == kType) path_ = element["uri"];
    answer_ = program_.FirstAnswerTo(Request(0));
  }
  /// Each with another value, which always has four digits.
  std::string Request(std::uint32_t time) const {
    return bench::PostRequest(path_, program_.Port(), {{"currentValue", 1000 + time % 1000}});
  }
  const std::string& Answer() const { return answer_; }
  std::uint16_t Port() const { return program_.Port(); }
  pid_t Pid() const { return program_.Pid(); }
  pid_t VehiclePid() const { return vehicle_.Pid(); }

 private:
  bench::Program program_;
  bench::Child vehicle_{[this] { bench::FixedValues{program_.Root().DeploymentPath()}.Context().run(); }};
  std::string path_, answer_;
};

class Road {
 public:
  explicit Road(const Bridge& bridge) : bridge_{bridge}, client_{bridge.Port(), bridge.Answer().size()} {}
  void Trip() { client_.Trip(bridge_.Request(++times_)); }
  pid_t ServerPid() const { return bridge_.Pid(); }
  pid_t OtherPid() const { return bridge_.VehiclePid(); }

 private:
  const Bridge& bridge_;
  Client client_;
  std::uint32_t times_ = 0;
};

/// The same bytes in both directions on both ways.
bench::Sizes SetSizes() {
  cmc::DT_valueControls_struct control;
  control.type = cmc::DT_ChargingManagementCore_valueControls_type::immediateChargingOptionsTargetSoc;
  control.currentValue = 1000U;
  const auto size = xr::com::wire::kHeaderSize + bench::Payload(std::vector{control}).size();
  return {size, {size}};
}

class Floor {
 public:
  Floor(bench::Trip trip, const Bridge& bridge)
      : request_{bridge.Request(0)},
        other_{[this] { bench::Serve(pair_.server, SetSizes()); }},
        server_{[&] { bench::RunAskingServer(listener_, bridge.Answer(), trip, pair_.client, SetSizes()); }},
        client_{listener_.Port(), bridge.Answer().size()} {}
  void Trip() { client_.Trip(request_); }
  pid_t ServerPid() const { return server_.Pid(); }
  pid_t OtherPid() const { return other_.Pid(); }

 private:
  std::string request_;
  bench::SocketPair pair_ = bench::TcpPair();
  bench::Socket listener_ = bench::ListenTcp();
  bench::Child other_, server_;
  Client client_;
};

/// What one of the ways gave turn by turn.
class Side {
 public:
  template <class Way>
  void Turn(Way& way) {
    constexpr std::size_t kTrips = 300;
    server_.Add(way.ServerPid(), [&] {
      other_.Add(way.OtherPid(), [&] {
        latency_.Add(bench::TimeEach(kTrips, [&] { way.Trip(); }));
        return kTrips;
      });
      return kTrips;
    });
  }
  static void PrintLatency(const std::string& what, const Side& road, const Side& floor, const std::string& aim) {
    bench::PrintRow("POST of a value, " + what + ", median", "us", road.latency_.Median(), floor.latency_.Median(), aim);
    bench::PrintRow("  p99 of the same", "us", road.latency_.P99(), floor.latency_.P99(), aim);
  }
  static void PrintCpu(const Side& road, const Side& floor) {
    bench::PrintRow("  CPU of the server for each", "us", road.server_.Microseconds(), floor.server_.Microseconds(), "");
    bench::PrintRow("  CPU of the vehicle, and of the other side", "us", road.other_.Microseconds(), floor.other_.Microseconds(), "");
  }

 private:
  bench::Turns latency_;
  bench::CpuTurns server_, other_;
};

}  // namespace

int main() {
  bench::PrintHead();
  const Bridge quietBridge{"quiet_bridge"}, loggingBridge{"charging_management_core"};
  Floor threeQueues{bench::Trip::threeQueues, quietBridge}, oneThread{bench::Trip::oneThread, quietBridge};
  Road quiet{quietBridge}, logging{loggingBridge};

  Side quietRoad, loggingRoad, threeQueuesFloor, oneThreadFloor;
  for (int i = 0; i < 25; ++i) {
    quietRoad.Turn(quiet);
    threeQueuesFloor.Turn(threeQueues);
    loggingRoad.Turn(logging);
    oneThreadFloor.Turn(oneThread);
  }
  Side::PrintLatency("log off / both trips and three queues", quietRoad, threeQueuesFloor, "<= 1.3");
  Side::PrintCpu(quietRoad, threeQueuesFloor);
  Side::PrintLatency("log off / both trips on one thread", quietRoad, oneThreadFloor, "");
  Side::PrintLatency("log to a file / log off", loggingRoad, quietRoad, "");
}
