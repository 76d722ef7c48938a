#include "serve/connection.h"

#include <utility>
#include <vector>

#include <poll.h>

namespace zuva::serve {

bool HasLeft(boost::asio::ip::tcp::socket& socket) {
  pollfd state{socket.native_handle(), POLLRDHUP, 0};  // told even if unread bytes stand before it, such as the goodbye of TLS
  return ::poll(&state, 1, 0) > 0;
}

void Connections::Add(std::shared_ptr<Connection> connection) {
  auto* const key = connection.get();
  all_.emplace(key, std::move(connection));
}

void Connections::Remove(Connection* connection) {
  all_.erase(connection);
}

bool Connections::CloseLongestIdle() {
  Connection* longest = nullptr;
  auto earliest = Clock::time_point::max();
  for (const auto& [connection, owner] : all_) {
    const auto since = connection->IdleSince();
    if (since && *since < earliest) {
      longest = connection;
      earliest = *since;
    }
  }
  if (!longest) return false;
  const auto held = all_.at(longest);  // while it takes itself off the list
  held->Abort();
  return true;
}

void Connections::ForEach(const std::function<void(Connection&)>& visit) {
  std::vector<std::shared_ptr<Connection>> present;
  present.reserve(all_.size());
  for (const auto& [connection, owner] : all_) present.push_back(owner);
  for (const auto& connection : present) visit(*connection);
}

}  // namespace zuva::serve
