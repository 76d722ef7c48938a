#include "bench/ping_pong.h"

namespace bench {

namespace {

std::vector<std::vector<unsigned char>> RoomsOf(const std::vector<std::size_t>& sizes) {
  std::vector<std::vector<unsigned char>> rooms(sizes.begin(), sizes.end());
  return rooms;
}

}  // namespace

void Serve(const Socket& server, const Sizes& sizes) {
  std::vector<unsigned char> request(sizes.request);
  const auto replies = RoomsOf(sizes.replies);
  for (;;) {
    for (const auto& reply : replies) {
      server.ReceiveAll(request);
      server.Send(reply);
    }
  }
}

void Meeting::Come() {
  {
    const std::lock_guard lock{mutex_};
    ++come_;
  }
  change_.notify_one();
}

void Meeting::Wait() {
  std::unique_lock lock{mutex_};
  change_.wait(lock, [this] { return come_ != 0; });
  --come_;
}

PingPong::PingPong(SocketPair pair, const Sizes& sizes)
    : sockets_{std::move(pair)}, request_(sizes.request), replies_{RoomsOf(sizes.replies)}, server_{[&] {
        Serve(sockets_.server, sizes);
      }} {}

void PingPong::Trip() {
  SendRequests();
  for (std::size_t number = 0; number < Replies(); ++number) ReceiveReply(number);
}

void PingPong::SendRequests() const {
  for (std::size_t number = 0; number < Replies(); ++number) sockets_.client.Send(request_);
}

HandedOver::~HandedOver() {
  if (!receiver_.joinable()) return;
  ending_ = true;
  pingPong_.SendRequests();  // their replies let the receiver see the end
  receiver_.join();
}

void HandedOver::Trip() {
  if (!receiver_.joinable()) receiver_ = std::thread{[this] { Receive(); }};
  pingPong_.SendRequests();
  for (std::size_t number = 0; number < pingPong_.Replies(); ++number) meeting_.Wait();
}

void HandedOver::Receive() {
  while (!ending_) {
    for (std::size_t number = 0; number < pingPong_.Replies(); ++number) {
      pingPong_.ReceiveReply(number);
      meeting_.Come();
    }
  }
}

}  // namespace bench
