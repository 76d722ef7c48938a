#include "serve/connection.h"

#include <algorithm>
#include <exception>
#include <utility>

#include <poll.h>

#include "zuva/logger.h"

namespace zuva::serve {

bool HasLeft(boost::asio::ip::tcp::socket& socket) {
  pollfd state{socket.native_handle(), POLLRDHUP, 0};  // told even if unread bytes stand before it, such as the goodbye of TLS
  return ::poll(&state, 1, 0) > 0;
}

void Connections::Add(std::shared_ptr<Connection> connection) {
  const auto needed = all_.size() + 1;
  if (visited_.capacity() < needed) visited_.reserve(std::max(needed, 2 * visited_.capacity()));
  auto* const key = connection.get();
  all_.emplace(key, std::move(connection));
}

void Connections::Remove(Connection* connection) noexcept {
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

void Connections::ForEach(const std::function<void(Connection&)>& visit) noexcept {
  auto visited = std::exchange(visited_, {});
  for (const auto& [connection, owner] : all_) visited.push_back(owner);
  for (const auto& connection : visited) {
    try {
      OrAbort(*connection, [&] { visit(*connection); });
    } catch (const std::exception& e) {
      GetLogger().LogError() << "A connection was ended: " << e;
    }
  }
  visited.clear();
  visited_ = std::move(visited);
}

void Connections::AbortAll() noexcept {
  ForEach([](Connection& connection) { connection.Abort(); });
}

}  // namespace zuva::serve
