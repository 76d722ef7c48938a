#pragma once

#include "bench/child.h"
#include "bench/raw_websocket.h"
#include "bench/sockets.h"

#include <cstddef>
#include <vector>

namespace bench {

/// The least that brings a datagram into a client's frame: a process that copies the datagram's bytes into a frame of the given size and
/// sends it. Either on one thread, or handed over through as many queues as lie on the bridge's road.
class Relay {
 public:
  enum class Road { oneThread, twoQueues };

  Relay(Road road, std::size_t datagramSize, std::size_t textSize);
  /// Sends a datagram and waits for its frame.
  void Trip();

 private:
  Socket sender_, receiver_;
  Socket listener_, client_, server_;
  std::vector<unsigned char> datagram_;
  FrameReader reader_{client_};
  Child child_;
};

}  // namespace bench
