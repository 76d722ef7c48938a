#include "bench/crowd.h"

#include <sys/epoll.h>

#include <array>
#include <stdexcept>
#include <string_view>
#include <system_error>
#include <utility>

namespace bench {

Crowd::Crowd(std::vector<Channel> channels, std::size_t textSize, std::string front)
    : textSize_{textSize}, front_{std::move(front)}, room_(textSize), epoll_{::epoll_create1(EPOLL_CLOEXEC)} {
  for (auto& channel : channels) members_.push_back({std::move(channel)});
  for (auto& member : members_) {
    epoll_event event{};
    event.events = EPOLLIN;
    event.data.ptr = &member;
    if (::epoll_ctl(epoll_.Number(), EPOLL_CTL_ADD, member.channel.Number(), &event) != 0)
      throw std::system_error(errno, std::generic_category(), "epoll_ctl");
  }
}

void Crowd::Expect(Member& member) const {
  member.missing = textSize_;
  member.waitsSince = Clock::now();
}

const std::vector<Crowd::Member*>& Crowd::Ready() {
  std::array<epoll_event, 64> events;
  const int ready = ::epoll_wait(epoll_.Number(), events.data(), static_cast<int>(events.size()), 10'000);
  if (ready <= 0) throw std::runtime_error("the server does not answer");
  ready_.clear();
  for (int i = 0; i < ready; ++i) ready_.push_back(static_cast<Member*>(events[static_cast<std::size_t>(i)].data.ptr));
  return ready_;
}

bool Crowd::TakeOf(Member& member) {
  do {
    const auto size = member.channel.Receive(room_);
    const bool isFront = member.missing == textSize_;
    const std::string_view text{reinterpret_cast<const char*>(room_.data()), size};
    if (size > member.missing || (isFront && text.substr(0, front_.size()) != front_))
      throw std::runtime_error("another answer than expected");
    member.missing -= size;
  } while (member.channel.HasMore());
  return member.missing == 0;
}

}  // namespace bench
