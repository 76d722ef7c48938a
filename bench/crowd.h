#pragma once

#include "bench/channel.h"
#include "bench/measure.h"
#include "bench/sockets.h"

#include <cstddef>
#include <string>
#include <vector>

namespace bench {

/// Many connections to one server on one thread, which wait for texts that all have the same size and front.
class Crowd {
 public:
  struct Member {
    Channel channel;
    std::size_t missing = 0;  ///< bytes of the text that it waits for
    Clock::time_point waitsSince{};
  };

  Crowd(std::vector<Channel> channels, std::size_t textSize, std::string front);

  std::vector<Member>& Members() { return members_; }
  /// From now on the member waits for a text.
  void Expect(Member& member) const;
  /// Takes what has come, and calls `done` with each member that then has its text. Throws std::runtime_error if nothing comes for ten
  /// seconds, or something else.
  template <class Done>
  void Take(Done&& done) {
    for (auto* member : Ready())
      if (TakeOf(*member)) done(*member);
  }

 private:
  const std::vector<Member*>& Ready();
  bool TakeOf(Member& member);

  std::vector<Member> members_;
  std::size_t textSize_;
  std::string front_;
  std::vector<unsigned char> room_;
  std::vector<Member*> ready_;
  Socket epoll_;
};

}  // namespace bench
