#include "bench/relay.h"

#include <algorithm>
#include <array>
#include <condition_variable>
#include <deque>
#include <mutex>
#include <string>
#include <thread>
#include <utility>

namespace bench {

namespace {

using Datagram = std::vector<unsigned char>;

/// Unbounded, since the benchmark sends one at a time.
class Queue {
 public:
  void Push(Datagram datagram) {
    {
      const std::lock_guard lock{mutex_};
      waiting_.push_back(std::move(datagram));
    }
    change_.notify_one();
  }
  Datagram Pop() {
    std::unique_lock lock{mutex_};
    change_.wait(lock, [this] { return !waiting_.empty(); });
    auto datagram = std::move(waiting_.front());
    waiting_.pop_front();
    return datagram;
  }

 private:
  std::mutex mutex_;  // guards waiting_
  std::deque<Datagram> waiting_;
  std::condition_variable change_;
};

Datagram Received(const Socket& socket) {
  std::array<unsigned char, 65536> room;
  const auto size = socket.Receive(room);
  return {room.data(), room.data() + size};
}

class Frames {
 public:
  Frames(const Socket& socket, std::size_t textSize) : socket_{socket}, frame_{ServerFrame(std::string(textSize, '.'))} {}
  void Send(const Datagram& datagram) {
    std::copy(datagram.begin(), datagram.end(), frame_.end() - static_cast<std::ptrdiff_t>(datagram.size()));
    socket_.Send(frame_);
  }

 private:
  const Socket& socket_;
  std::vector<unsigned char> frame_;
};

void RunOnOneThread(const Socket& in, Frames out) {
  for (;;) out.Send(Received(in));
}

void RunThroughTwoQueues(const Socket& in, Frames out) {
  Queue first, second;
  const std::thread middle{[&] {
    for (;;) second.Push(first.Pop());
  }};
  const std::thread last{[&] {
    for (;;) out.Send(second.Pop());
  }};
  for (;;) first.Push(Received(in));
}

}  // namespace

Relay::Relay(Road road, std::size_t datagramSize, std::size_t textSize)
    : sender_{OpenUdp()},
      receiver_{OpenUdp()},
      listener_{ListenTcp()},
      client_{ConnectTcp(listener_.Port())},
      server_{Accept(listener_)},
      datagram_(datagramSize),
      child_{[&] {
        Frames frames{server_, textSize};
        if (road == Road::oneThread) {
          RunOnOneThread(receiver_, std::move(frames));
        } else {
          RunThroughTwoQueues(receiver_, std::move(frames));
        }
      }} {
  Join(sender_, receiver_.Port());
}

void Relay::Trip() {
  sender_.Send(datagram_);
  reader_.Next();
}

}  // namespace bench
