#pragma once

#include <boost/asio/posix/stream_descriptor.hpp>

#include <functional>
#include <string>

namespace vehicle {

/// Reads lines from a descriptor, which it takes over, on the thread of an io_context. Its end ends the reading and nothing else.
class CommandInput {
 public:
  CommandInput(boost::asio::io_context& context, int descriptor, std::function<void(const std::string& line)> onLine);

 private:
  void Read();

  boost::asio::posix::stream_descriptor input_;
  std::string buffer_;
  std::function<void(const std::string& line)> onLine_;
};

}  // namespace vehicle
