#include "bench/channel.h"

#include <openssl/ssl.h>

#include <stdexcept>
#include <utility>

namespace bench {

namespace {

ssl_st* NewSession() {
  static SSL_CTX* const context = SSL_CTX_new(TLS_client_method());  // of all channels, to the end of the program
  return SSL_new(context);
}

}  // namespace

Channel::Channel(Socket socket, Transport transport)
    : socket_{std::move(socket)}, tls_{transport == Transport::tls ? NewSession() : nullptr, SSL_free} {
  if (transport == Transport::plain) return;
  if (SSL_set_fd(tls_.get(), socket_.Number()) != 1 || SSL_connect(tls_.get()) != 1) throw std::runtime_error("no TLS handshake");
}

void Channel::Send(Bytes bytes) const {
  if (!tls_) return socket_.Send(bytes);
  if (SSL_write(tls_.get(), bytes.data(), static_cast<int>(bytes.size())) != static_cast<int>(bytes.size()))
    throw std::runtime_error("nothing can be sent over TLS");
}

std::size_t Channel::Receive(Room room) const {
  if (!tls_) return socket_.Receive(room);
  const auto size = SSL_read(tls_.get(), room.data(), static_cast<int>(room.size()));
  if (size <= 0) throw std::runtime_error("the other side has ended TLS");
  return static_cast<std::size_t>(size);
}

bool Channel::HasMore() const {
  return tls_ && SSL_pending(tls_.get()) > 0;
}

}  // namespace bench
