#pragma once

#include "bench/channel.h"
#include "bench/crowd.h"
#include "bench/measure.h"

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <string>

namespace bench {

/// Clients of one HTTP server on one thread: so many kept connections, on each of them one request at a time.
class Load {
 public:
  /// All answers have this size. Throws std::system_error if the server does not take the connections.
  Load(std::uint16_t port, std::string request, std::size_t answerSize, std::size_t connections, Transport transport = Transport::plain);

  struct Result {
    double answers = 0;
    double perSecond = 0;
    Quantiles microseconds;  ///< from the request to the whole answer
  };
  Result Run(std::chrono::milliseconds duration);

 private:
  void Ask(Crowd::Member& member) const;

  std::string request_;
  Crowd crowd_;
};

}  // namespace bench
