#include "bench/load.h"

#include <utility>
#include <vector>

namespace bench {

namespace {

std::vector<Channel> Connections(std::uint16_t port, std::size_t count, Transport transport) {
  std::vector<Channel> channels;
  while (channels.size() < count) channels.emplace_back(ConnectTcp(port), transport);
  return channels;
}

}  // namespace

Load::Load(std::uint16_t port, std::string request, std::size_t answerSize, std::size_t connections, Transport transport)
    : request_{std::move(request)}, crowd_{Connections(port, connections, transport), answerSize, "HTTP/1.1 200"} {}

Load::Result Load::Run(std::chrono::milliseconds duration) {
  std::vector<double> samples;
  const auto began = Clock::now();
  const auto end = began + duration;
  auto last = began;
  for (auto& member : crowd_.Members()) Ask(member);
  for (auto open = crowd_.Members().size(); open != 0;) {
    crowd_.Take([&](Crowd::Member& member) {
      last = Clock::now();
      samples.push_back(Microseconds(last - member.waitsSince));
      if (last < end) {
        Ask(member);
      } else {
        --open;
      }
    });
  }
  const double seconds = std::chrono::duration<double>(last - began).count();
  const auto answers = static_cast<double>(samples.size());
  return {answers, answers / seconds, QuantilesOf(std::move(samples))};
}

void Load::Ask(Crowd::Member& member) const {
  crowd_.Expect(member);
  member.channel.Send(AsBytes(request_));
}

}  // namespace bench
