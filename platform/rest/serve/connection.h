#pragma once

#include <chrono>
#include <cstddef>
#include <functional>
#include <memory>
#include <optional>
#include <unordered_map>
#include <utility>
#include <vector>

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
  /// Ends at once; harmless when repeated.
  virtual void Abort() noexcept = 0;
  /// Whether a callback works on an answer for it.
  virtual bool AwaitsAnswer() const = 0;
  /// Since when it has nothing to do and could be closed for another client; nothing if it could not.
  virtual std::optional<Clock::time_point> IdleSince() const { return std::nullopt; }
};

/// Runs a step of a connection's work; if it throws, the connection ends and the exception goes on.
template <class Session, class Step>
void OrAbort(Session& session, Step&& step) {
  try {
    std::forward<Step>(step)();
  } catch (...) {  // whatever it is: what the connection waits for may never come now
    session.Abort();
    throw;
  }
}

/// The handler of a connection's asynchronous operation: keeps the connection alive, and ends it if the step throws, or if the operation
/// itself ends with an exception, which destroys the handler uncalled. I/O thread only.
template <class Session, class Step>
class Continuation {
 public:
  Continuation(std::shared_ptr<Session> session, Step step) : session_{std::move(session)}, step_{std::move(step)} {}
  Continuation(Continuation&&) noexcept = default;
  Continuation& operator=(Continuation&&) = delete;
  ~Continuation() {
    if (session_) session_->Abort();
  }

  template <class... Arguments>
  void operator()(Arguments&&... arguments) {
    const auto session = std::exchange(session_, nullptr);
    OrAbort(*session, [&] { step_(*session, std::forward<Arguments>(arguments)...); });
  }

 private:
  std::shared_ptr<Session> session_;
  Step step_;
};

/// Whether the client has closed its side of the connection, so that an answer is of no use. What it sent before stays to be read.
bool HasLeft(boost::asio::ip::tcp::socket& socket);

/// The connections of a server, which owns them here. I/O thread only.
class Connections {
 public:
  void Add(std::shared_ptr<Connection> connection);
  void Remove(Connection* connection) noexcept;
  std::size_t Size() const { return all_.size(); }
  /// Closes the one that has been idle for the longest time; false if none is idle.
  bool CloseLongestIdle();
  /// Calls `visit` for each that is there now; it may remove any. One for which it throws is ended. Allocates nothing; not to be nested.
  void ForEach(const std::function<void(Connection&)>& visit) noexcept;
  void AbortAll() noexcept;

 private:
  std::unordered_map<Connection*, std::shared_ptr<Connection>> all_;
  std::vector<std::shared_ptr<Connection>> visited_;  // empty between visits, with room for all
};

}  // namespace zuva::serve
