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

/// One request for each of the replies, which come in this order.
struct Sizes {
  std::size_t request;
  std::vector<std::size_t> replies;
};

/// The other side of round trips: answers each request with the reply that is next. Does not return.
void Serve(const Socket& server, const Sizes& sizes);

/// One thread waits as often as another has come.
class Meeting {
 public:
  void Come();
  void Wait();

 private:
  std::mutex mutex_;  // guards come_
  std::size_t come_ = 0;
  std::condition_variable change_;
};

/// Round trips at their cheapest, all under way at once: blocking sockets, one thread on each side, two processes.
class PingPong {
 public:
  PingPong(SocketPair pair, const Sizes& sizes);
  void Trip();
  void SendRequests() const;
  void ReceiveReply(std::size_t number) { sockets_.client.ReceiveAll(replies_[number]); }
  std::size_t Replies() const { return replies_.size(); }
  pid_t ServerPid() const { return server_.Pid(); }

 private:
  SocketPair sockets_;
  std::vector<unsigned char> request_;
  std::vector<std::vector<unsigned char>> replies_;
  Child server_;
};

/// The same, but that a thread of its own receives the replies and wakes the one that waits: three hand-overs instead of two. That is
/// what every client costs whose callers do not read the socket themselves.
class HandedOver {
 public:
  /// The thread comes with the first trip, so that the children of other floors can still be made.
  HandedOver(SocketPair pair, const Sizes& sizes) : pingPong_{std::move(pair), sizes} {}
  ~HandedOver();
  HandedOver(const HandedOver&) = delete;
  HandedOver& operator=(const HandedOver&) = delete;
  void Trip();
  pid_t ServerPid() const { return pingPong_.ServerPid(); }

 private:
  void Receive();

  PingPong pingPong_;
  std::atomic<bool> ending_ = false;
  Meeting meeting_;
  std::thread receiver_;
};

}  // namespace bench
