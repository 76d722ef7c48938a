#pragma once

#include <chrono>
#include <cstddef>
#include <functional>
#include <memory>
#include <optional>
#include <unordered_map>

#include <boost/asio/ip/tcp.hpp>

namespace zuva::serve {

using Clock = std::chrono::steady_clock;

/// One client's connection, whatever it speaks. I/O thread only.
class Connection {
 public:
  virtual ~Connection() = default;
  /// Ends what has taken too long; called a few times a second.
  virtual void Sweep(Clock::time_point now) = 0;
  /// Takes nothing more, ends in good order, and leaves the list when that is done.
  virtual void Stop() = 0;
  /// Ends at once.
  virtual void Abort() = 0;
  /// Whether a callback works on an answer for it.
  virtual bool AwaitsAnswer() const = 0;
  /// Since when it has nothing to do and could be closed for another client; nothing if it could not.
  virtual std::optional<Clock::time_point> IdleSince() const { return std::nullopt; }
};

/// Whether the client has closed its side of the connection, so that an answer is of no use. What it sent before stays to be read.
bool HasLeft(boost::asio::ip::tcp::socket& socket);

/// The connections of a server, which owns them here. I/O thread only.
class Connections {
 public:
  void Add(std::shared_ptr<Connection> connection);
  void Remove(Connection* connection);
  std::size_t Size() const { return all_.size(); }
  /// Closes the one that has been idle for the longest time; false if none is idle.
  bool CloseLongestIdle();
  /// Calls `visit` for each that is there now; it may remove any.
  void ForEach(const std::function<void(Connection&)>& visit);

 private:
  std::unordered_map<Connection*, std::shared_ptr<Connection>> all_;
};

}  // namespace zuva::serve
