#include "bench/channel.h"
#include "bench/load.h"
#include "bench/load_turns.h"
#include "bench/measure.h"
#include "bench/program.h"
#include "bench/stay_on.h"
#include "tests/support/certificate.h"

#include <fstream>
#include <string>

// GET of an element over TLS by sixteen kept connections, against the same without.
namespace {

constexpr std::size_t kConnections = 16;

/// A bridge and its clients.
class Side {
 public:
  explicit Side(bench::Transport transport) : program_{"charging_management_core", Settings(transport)}, transport_{transport} {}

  void Start() {
    if (transport_ == bench::Transport::tls) {
      const auto own = test_support::MakeCertificate();
      std::ofstream{program_.Root().Path() / "certificate.pem"} << own.certificate;
      std::ofstream{program_.Root().Path() / "key.pem"} << own.key;
    }
    program_.Start();
  }
  bench::Load Clients() const {
    const std::string path = program_.FirstElements("/ChargingManagementCore/valueControls")[0]["uri"];
    return {program_.Port(), bench::GetRequest(path, program_.Port()), program_.FirstAnswer(path).size(), kConnections, transport_};
  }
  pid_t Pid() const { return program_.Pid(); }
  void Stop() { program_.Stop(); }

 private:
  static nlohmann::json Settings(bench::Transport transport) {
    if (transport == bench::Transport::plain) return nlohmann::json::object();
    return {{"tls", {{"certificate", "/certificate.pem"}, {"key", "/key.pem"}}}};
  }

  bench::Program program_;
  bench::Transport transport_;
};

}  // namespace

int main() {
  bench::PrintHead();
  bench::LoadTurns withTls, without;
  for (int round = 0; round < 5; ++round) {  // both started anew, as in the benchmark of plain HTTP
    Side tls{bench::Transport::tls}, plain{bench::Transport::plain};
    bench::StayOn(1);
    tls.Start();
    plain.Start();
    bench::StayOn(0);
    auto tlsLoad = tls.Clients(), plainLoad = plain.Clients();
    for (int turn = 0; turn < 5; ++turn) {
      withTls.Add(tlsLoad, tls.Pid(), bench::TurnLength(2 * turn));
      without.Add(plainLoad, plain.Pid(), bench::TurnLength(2 * turn + 1));
    }
    tls.Stop();
    plain.Stop();
  }
  bench::PrintRows("GET of an element over TLS, 16 connections / without TLS", withTls, without, "", "");
}
