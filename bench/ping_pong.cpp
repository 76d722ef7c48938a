#include "bench/ping_pong.h"

namespace bench {

namespace {

void Serve(const Socket& server, Sizes sizes) {
  std::vector<unsigned char> request(sizes.request), reply(sizes.reply);
  for (;;) {
    server.ReceiveAll(request);
    server.Send(reply);
  }
}

}  // namespace

SocketPair UdpPair() {
  SocketPair pair{OpenUdp(), OpenUdp()};
  Join(pair.client, pair.server.Port());
  Join(pair.server, pair.client.Port());
  return pair;
}

SocketPair TcpPair() {
  const auto listener = ListenTcp();
  auto client = ConnectTcp(listener.Port());
  return {std::move(client), Accept(listener)};
}

void Meeting::Come() {
  {
    const std::lock_guard lock{mutex_};
    come_ = true;
  }
  change_.notify_one();
}

void Meeting::Wait() {
  std::unique_lock lock{mutex_};
  change_.wait(lock, [this] { return come_; });
  come_ = false;
}

PingPong::PingPong(SocketPair pair, Sizes sizes)
    : sockets_{std::move(pair)}, request_(sizes.request), reply_(sizes.reply), server_{[this, sizes] { Serve(sockets_.server, sizes); }} {}

HandedOver::~HandedOver() {
  if (!receiver_.joinable()) return;
  ending_ = true;
  pingPong_.SendRequest();  // its reply lets the receiver see the end
  receiver_.join();
}

void HandedOver::Trip() {
  if (!receiver_.joinable()) receiver_ = std::thread{[this] { Receive(); }};
  pingPong_.SendRequest();
  meeting_.Wait();
}

void HandedOver::Receive() {
  while (!ending_) {
    pingPong_.ReceiveReply();
    meeting_.Come();
  }
}

}  // namespace bench
