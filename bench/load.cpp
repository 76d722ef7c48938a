#include "bench/load.h"

#include <sys/epoll.h>

#include <array>
#include <stdexcept>
#include <system_error>
#include <utility>

namespace bench {

Load::Load(std::uint16_t port, std::string request, std::size_t answerSize, std::size_t connections)
    : request_{std::move(request)}, answerSize_{answerSize}, room_(answerSize), epoll_{::epoll_create1(EPOLL_CLOEXEC)} {
  for (std::size_t i = 0; i < connections; ++i) connections_.push_back({ConnectTcp(port)});
  for (auto& connection : connections_) {
    epoll_event event{};
    event.events = EPOLLIN;
    event.data.ptr = &connection;
    if (::epoll_ctl(epoll_.Number(), EPOLL_CTL_ADD, connection.socket.Number(), &event) != 0)
      throw std::system_error(errno, std::generic_category(), "epoll_ctl");
  }
}

Load::Result Load::Run(std::chrono::milliseconds duration) {
  std::vector<double> samples;
  const auto began = Clock::now();
  const auto end = began + duration;
  auto last = began;
  for (auto& connection : connections_) Ask(connection);
  for (auto open = connections_.size(); open != 0;) {
    std::array<epoll_event, 64> events;
    const int ready = ::epoll_wait(epoll_.Number(), events.data(), static_cast<int>(events.size()), 10'000);
    if (ready <= 0) throw std::runtime_error("the server does not answer");
    for (int i = 0; i < ready; ++i) {
      auto& connection = *static_cast<Connection*>(events[static_cast<std::size_t>(i)].data.ptr);
      if (!Take(connection)) continue;
      last = Clock::now();
      samples.push_back(Microseconds(last - connection.sent));
      if (last < end) {
        Ask(connection);
      } else {
        --open;
      }
    }
  }
  const double seconds = std::chrono::duration<double>(last - began).count();
  const auto answers = static_cast<double>(samples.size());
  return {answers, answers / seconds, QuantilesOf(std::move(samples))};
}

void Load::Ask(Connection& connection) const {
  connection.missing = answerSize_;
  connection.sent = Clock::now();
  connection.socket.Send({reinterpret_cast<const unsigned char*>(request_.data()), request_.size()});
}

bool Load::Take(Connection& connection) {
  constexpr std::string_view kGood = "HTTP/1.1 200";
  const auto size = connection.socket.Receive(room_);
  const bool isFront = connection.missing == answerSize_;
  if (size > connection.missing ||
      (isFront && std::string_view{reinterpret_cast<const char*>(room_.data()), size}.substr(0, kGood.size()) != kGood))
    throw std::runtime_error("another answer than expected");
  connection.missing -= size;
  return connection.missing == 0;
}

}  // namespace bench
