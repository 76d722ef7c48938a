#include "bench/relay.h"

#include "bench/queue.h"

#include <algorithm>
#include <string>
#include <thread>
#include <utility>

namespace bench {

namespace {

using Message = std::vector<unsigned char>;

Message Received(const Socket& socket, std::size_t size) {
  Message message(size);
  socket.ReceiveAll(message);
  return message;
}

/// Each frame takes its part of the message.
class Frames {
 public:
  Frames(const Socket& socket, const Relay::Shape& shape)
      : socket_{socket}, frames_(shape.frames, ServerFrame(std::string(shape.text, '.'))) {}
  void Send(const Message& message) {
    const auto part = static_cast<std::ptrdiff_t>(message.size() / frames_.size());
    auto from = message.begin();
    for (auto& frame : frames_) {
      std::copy_n(from, part, frame.end() - part);
      from += part;
      socket_.Send(frame);
    }
  }

 private:
  const Socket& socket_;
  std::vector<std::vector<unsigned char>> frames_;
};

void RunOnOneThread(const Socket& in, Frames out, std::size_t size) {
  for (;;) out.Send(Received(in, size));
}

void RunThroughTwoQueues(const Socket& in, Frames out, std::size_t size) {
  Queue<Message> first, second;
  const std::thread middle{[&] {
    for (;;) second.Push(first.Pop());
  }};
  const std::thread last{[&] {
    for (;;) out.Send(second.Pop());
  }};
  for (;;) first.Push(Received(in, size));
}

}  // namespace

Relay::Relay(Road road, SocketPair in, Shape shape)
    : in_{std::move(in)}, out_{TcpPair()}, shape_{shape}, message_(shape.message), child_{[&] {
        const auto run = road == Road::oneThread ? RunOnOneThread : RunThroughTwoQueues;
        run(in_.server, Frames{out_.server, shape}, shape.message);
      }} {}

void Relay::Trip() {
  in_.client.Send(message_);
  for (std::size_t frame = 0; frame < shape_.frames; ++frame) reader_.Next();
}

}  // namespace bench
