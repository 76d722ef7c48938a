#include "bench/measure.h"
#include "bench/process_cost.h"
#include "bench/program.h"
#include "bench/raw_websocket.h"
#include "tests/support/process.h"
#include "tests/support/vehicle_process.h"

#include <chrono>
#include <cstdint>
#include <cstdlib>
#include <string>

// What the bridge holds after sessions without end, with a client that hears and asks for all of it.
namespace {

using namespace std::chrono_literals;
using std::chrono::minutes;

constexpr minutes kStart{1};
constexpr double kSpeed = 60;

minutes Length() {
  const char* const wanted = std::getenv("BENCH_MEMORY_MINUTES");
  return minutes{wanted ? std::strtol(wanted, nullptr, 10) : 20};
}

class Client {
 public:
  explicit Client(std::uint16_t port) : socket_{bench::Subscribed(port, "/ChargingManagementCore")} {}
  /// Takes all that it is told, and asks for a resource each second.
  void ListenUntil(bench::Clock::time_point end) {
    for (auto next = bench::Clock::now(); next < end;) {
      if (bench::Clock::now() >= next) {
        bench::SendText(socket_, R"({"action":"get","path":"/ChargingManagementCore/valueIndications","requestId":"2"})");
        next += 1s;
      }
      reader_.Next();
    }
  }

 private:
  bench::Socket socket_;
  bench::FrameReader reader_{socket_};
};

}  // namespace

int main() {
  bench::PrintHead();
  bench::Program bridge{"charging_management_core"};
  bridge.Start();
  bridge.FirstAnswer("/ChargingManagementCore");
  const auto began = bench::Clock::now();
  const test_support::VehicleProcess vehicle{bridge.Root(), "default", kSpeed};
  Client client{bridge.Port()};
  client.ListenUntil(began + kStart);
  const double first = test_support::ResidentMegabytes(bridge.Pid());
  client.ListenUntil(began + Length());
  const double last = test_support::ResidentMegabytes(bridge.Pid());
  bench::PrintRow("resident memory, " + std::to_string(Length().count()) + " minutes of session / one minute", "MB", last, first, "<= 1.0");
  bridge.Stop();
}
