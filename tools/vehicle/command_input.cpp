#include "tools/vehicle/command_input.h"

#include <boost/asio/buffer.hpp>
#include <boost/asio/io_context.hpp>
#include <boost/asio/read_until.hpp>

namespace vehicle {

namespace net = boost::asio;

namespace {

constexpr std::size_t kLongestLine = 1U << 20U;

}  // namespace

CommandInput::CommandInput(net::io_context& context, int descriptor, std::function<void(const std::string& line)> onLine)
    : input_{context, descriptor}, onLine_{std::move(onLine)} {
  Read();
}

void CommandInput::Read() {
  net::async_read_until(input_, net::dynamic_buffer(buffer_, kLongestLine), '\n', [this](auto error, std::size_t size) {
    if (error) return;
    const auto line = buffer_.substr(0, size - 1);
    buffer_.erase(0, size);
    if (!line.empty()) onLine_(line);
    Read();
  });
}

}  // namespace vehicle
