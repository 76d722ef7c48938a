#pragma once

#include "bench/measure.h"
#include "bench/sockets.h"

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace bench {

/// Clients of one HTTP server on one thread: so many kept connections, on each of them one request at a time.
class Load {
 public:
  /// All answers have this size. Throws std::system_error if the server does not take the connections.
  Load(std::uint16_t port, std::string request, std::size_t answerSize, std::size_t connections);

  struct Result {
    double answers = 0;
    double perSecond = 0;
    Quantiles microseconds;  ///< from the request to the whole answer
  };
  Result Run(std::chrono::milliseconds duration);

 private:
  struct Connection {
    Socket socket;
    Clock::time_point sent{};
    std::size_t missing = 0;  // bytes of the answer
  };

  void Ask(Connection& connection) const;
  /// Takes what is there; true when the answer is whole.
  bool Take(Connection& connection);

  std::string request_;
  std::size_t answerSize_;
  std::vector<Connection> connections_;
  std::vector<unsigned char> room_;
  Socket epoll_;
};

}  // namespace bench
