#include "bench/answer.h"
#include "bench/child.h"
#include "bench/fixed_values.h"
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
#include <utility>
#include <vector>

// Two hundred clients that write at once, over the objects of all five kinds.
namespace {

using namespace std::chrono_literals;

constexpr std::size_t kWriters = 200;
constexpr auto kLength = 10s;

/// One client, which writes again as soon as it is answered.
class Writer {
 public:
  Writer(bench::Write write, std::uint16_t port) : write_{std::move(write)}, socket_{bench::ConnectTcp(port)} {}

  int Number() const { return socket_.Number(); }
  void Ask() {
    asked_ = bench::Clock::now();
    socket_.Send(bench::AsBytes(write_.Request(time_)));
  }
  /// Takes what has come; whether that ends an answer.
  bool Take() {
    std::array<unsigned char, 65536> room;
    if (!answer_.Take({reinterpret_cast<const char*>(room.data()), socket_.Receive(room)})) return false;
    took_ = bench::Microseconds(bench::Clock::now() - asked_);
    if (!write_.IsRight(time_++, answer_)) throw std::runtime_error("another answer than the right one: " + answer_.Text());
    answer_.Forget();
    return true;
  }
  double Took() const { return took_; }

 private:
  bench::Write write_;
  bench::Socket socket_;
  bench::Answer answer_;
  std::size_t time_ = 0;
  bench::Clock::time_point asked_;
  double took_ = 0;
};

/// Microseconds of each write.
std::vector<double> Run(std::vector<Writer>& writers) {
  std::vector<pollfd> polled;
  for (auto& writer : writers) {
    polled.push_back({writer.Number(), POLLIN, 0});
    writer.Ask();
  }
  std::vector<double> samples;
  const auto end = bench::Clock::now() + kLength;
  for (auto open = writers.size(); open != 0;) {
    if (::poll(polled.data(), polled.size(), 10'000) <= 0) throw std::runtime_error("a write is not answered");
    for (std::size_t i = 0; i < writers.size(); ++i) {
      if (polled[i].revents == 0 || !writers[i].Take()) continue;
      samples.push_back(writers[i].Took());
      if (bench::Clock::now() < end) {
        writers[i].Ask();
      } else {
        --open;
      }
    }
  }
  return samples;
}

}  // namespace

int main() {
  bench::PrintHead();
  bench::StayOn(1);
  bench::Program bridge{"charging_management_core", {{"limits", {{"queuedRequests", kWriters}}}}};
  bridge.Start();
  const bench::Child vehicle{[&] {
    using Visibility = ylt::services::chargingmanagementcore::datatypes::DT_ChargingManagementCore_views_visibility;
    bench::FixedValues{bridge.Root().DeploymentPath(), {{"views", bench::Popup(Visibility::newRequest)}}}.Context().run();
  }};
  bench::StayOn(0);
  std::vector<Writer> writers;
  for (auto& write : bench::WritesOfAllKinds(bridge, kWriters)) writers.emplace_back(std::move(write), bridge.Port());
  auto samples = Run(writers);
  const auto answers = static_cast<double>(samples.size());
  const auto latency = bench::QuantilesOf(std::move(samples));
  bench::PrintRow("writes of 200 clients to all kinds of objects", "1/s", answers / std::chrono::duration<double>(kLength).count(), 0, "");
  bench::PrintRow("  median of the same", "us", latency.median, 0, "");
  bench::PrintRow("  p99 of the same", "us", latency.p99, 0, "");
  bridge.Stop();
}
