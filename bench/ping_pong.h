#pragma once

#include "bench/child.h"
#include "bench/sockets.h"

#include <atomic>
#include <condition_variable>
#include <cstddef>
#include <mutex>
#include <thread>
#include <utility>
#include <vector>

namespace bench {

/// Two joined sockets, one for each side of a floor.
struct SocketPair {
  Socket client, server;
};
SocketPair UdpPair();
SocketPair TcpPair();

struct Sizes {
  std::size_t request, reply;
};

/// One thread waits until another has come.
class Meeting {
 public:
  void Come();
  void Wait();

 private:
  std::mutex mutex_;  // guards come_
  bool come_ = false;
  std::condition_variable change_;
};

/// A round trip at its cheapest: blocking sockets, one thread on each side, two processes.
class PingPong {
 public:
  PingPong(SocketPair pair, Sizes sizes);
  void Trip() {
    SendRequest();
    ReceiveReply();
  }
  void SendRequest() const { sockets_.client.Send(request_); }
  void ReceiveReply() { sockets_.client.ReceiveAll(reply_); }

 private:
  SocketPair sockets_;
  std::vector<unsigned char> request_, reply_;
  Child server_;
};

/// The same, but that a thread of its own receives the replies and wakes the one that waits: three hand-overs instead of two. That is
/// what every client costs whose callers do not read the socket themselves.
class HandedOver {
 public:
  /// The thread comes with the first trip, so that the children of other floors can still be made.
  HandedOver(SocketPair pair, Sizes sizes) : pingPong_{std::move(pair), sizes} {}
  ~HandedOver();
  HandedOver(const HandedOver&) = delete;
  HandedOver& operator=(const HandedOver&) = delete;
  void Trip();

 private:
  void Receive();

  PingPong pingPong_;
  std::atomic<bool> ending_ = false;
  Meeting meeting_;
  std::thread receiver_;
};

}  // namespace bench
