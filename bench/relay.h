#pragma once

#include "bench/child.h"
#include "bench/raw_websocket.h"
#include "bench/sockets.h"

#include <cstddef>
#include <vector>

namespace bench {

/// The least that brings a message into a client's frames: a process that copies the message's bytes into frames of the given size and
/// sends them. Either on one thread, or handed over through as many queues as lie on the bridge's road.
class Relay {
 public:
  enum class Road { oneThread, twoQueues };
  /// Sizes of the message and of each frame's text.
  struct Shape {
    std::size_t message, text, frames;
  };

  /// The message comes by `in`.
  Relay(Road road, SocketPair in, Shape shape);
  /// Sends a message and waits for its frames.
  void Trip();

 private:
  SocketPair in_, out_;
  Shape shape_;
  std::vector<unsigned char> message_;
  FrameReader reader_{out_.client};
  Child child_;
};

}  // namespace bench
