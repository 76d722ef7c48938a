#include "bench/bridge.h"
#include "bench/measure.h"
#include "bench/payloads.h"
#include "bench/raw_websocket.h"
#include "bench/value_controls.h"

#include <charconv>
#include <chrono>
#include <cstdint>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

// How many notifications the bridge takes in a second, with the log off and with the log at info, one resource and one subscriber.
namespace {

using namespace std::chrono_literals;

/// As many notifications are under way as the bridge keeps samples of the field, so that each of them reaches its objects. Of changes that
/// gather before the client is told, it is told the newest only: a notification has arrived when its value or a later one is seen.
constexpr std::uint32_t kUnderWay = 11;
constexpr std::string_view kLastControl = R"("type":"bidirectionalChargingModesMaxSoc")";

class Stream {
 public:
  /// Notifications of the last `controls` of the seventeen.
  Stream(bench::Bridge& bridge, std::size_t controls)
      : controls_{controls}, bridge_{bridge}, client_{bench::Subscribed(bridge.program.Port(), "/ChargingManagementCore/valueControls")} {}

  void Turn(std::chrono::milliseconds length) {
    const auto before = seen_;
    const auto began = bench::Clock::now();
    while (bench::Clock::now() < began + length) {
      while (sent_ - seen_ < kUnderWay) Notify();
      See();
    }
    while (seen_ != sent_) See();
    const double seconds = std::chrono::duration<double>(bench::Clock::now() - began).count();
    perSecond_.push_back((seen_ - before) / seconds);
    framesPerSecond_.push_back(static_cast<double>(std::exchange(frames_, 0)) / seconds);
  }
  double PerSecond() const { return bench::QuantilesOf(perSecond_).median; }
  double FramesPerSecond() const { return bench::QuantilesOf(framesPerSecond_).median; }

 private:
  void Notify() {
    auto controls = bench::ValueControls(++sent_);
    controls.back().currentValue = sent_ % bench::kValues;
    controls.erase(controls.begin(), controls.end() - static_cast<std::ptrdiff_t>(controls_));
    bridge_.vehicle.Notify("valueControls", bench::Payload(controls));
  }
  /// Reads up to the next frame of the control that each notification ends with.
  void See() {
    constexpr std::string_view kValue = R"("currentValue":)";
    for (;;) {
      const auto frame = reader_.Next();
      ++frames_;
      if (frame.find(kLastControl) == std::string_view::npos) continue;
      const auto* const digits = frame.data() + frame.find(kValue) + kValue.size();
      std::uint32_t value = 0;
      std::from_chars(digits, frame.data() + frame.size(), value);
      seen_ += (value + bench::kValues - seen_ % bench::kValues) % bench::kValues;
      return;
    }
  }

  std::size_t controls_;
  bench::Bridge& bridge_;
  bench::Socket client_;
  bench::FrameReader reader_{client_};
  std::uint32_t sent_ = 0, seen_ = 0;
  std::size_t frames_ = 0;
  std::vector<double> perSecond_, framesPerSecond_;
};

void Compare(const std::string& name, std::size_t controls) {
  bench::Bridge quietBridge{"quiet_bridge"}, loggingBridge{"charging_management_core"};
  bench::Settle({&quietBridge, &loggingBridge});
  Stream quiet{quietBridge, controls}, logging{loggingBridge, controls};
  for (int turn = 0; turn < 15; ++turn) {
    quiet.Turn(300ms);
    logging.Turn(300ms);
  }
  bench::PrintRow(name + ", log to a file / log off", "1/s", logging.PerSecond(), quiet.PerSecond(), ">= 0.67");
  bench::PrintRow("  frames of the same", "1/s", logging.FramesPerSecond(), quiet.FramesPerSecond(), "");
}

}  // namespace

int main() {
  bench::PrintHead();
  Compare("notifications of one control", 1);
  Compare("notifications of 17 controls", 17);
}
