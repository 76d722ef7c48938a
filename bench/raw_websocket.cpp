#include "bench/raw_websocket.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <stdexcept>

namespace bench {

namespace {

constexpr unsigned char kFinalText = 0x81;

void Upgrade(const Socket& socket, FrameReader& reader, std::uint16_t port) {
  socket.Send(AsBytes("GET / HTTP/1.1\r\nHost: 127.0.0.1:" + std::to_string(port) +
                      "\r\nConnection: Upgrade\r\nUpgrade: websocket\r\nSec-WebSocket-Version: 13\r\n"
                      "Sec-WebSocket-Key: dGhlIHNhbXBsZSBub25jZQ==\r\n\r\n"));
  if (const auto head = reader.Head(); !head.starts_with("HTTP/1.1 101")) throw std::runtime_error("no upgrade: " + head);
}

}  // namespace

const unsigned char* FrameReader::Need(std::size_t size) {
  while (end_ - begin_ < size) {
    if (begin_ + size > room_.size()) {
      std::memmove(room_.data(), room_.data() + begin_, end_ - begin_);
      end_ -= begin_;
      begin_ = 0;
    }
    if (size > room_.size()) throw std::runtime_error("a frame bigger than any of this benchmark");
    end_ += socket_.Receive(Room{room_}.subspan(end_));
  }
  return room_.data() + begin_;
}

std::string_view FrameReader::Next() {
  for (;;) {
    if (begin_ == end_) begin_ = end_ = 0;
    const auto* front = Need(2);
    const auto kind = front[0];
    std::size_t head = 2;
    std::size_t size = front[1];
    if (size >= 126) {
      const std::size_t bytes = size == 126 ? 2 : 8;
      head += bytes;
      front = Need(head);
      size = 0;
      for (std::size_t i = 2; i < head; ++i) size = size << 8U | front[i];
    }
    const auto* payload = Need(head + size) + head;
    begin_ += head + size;
    if (kind == kFinalText) return {reinterpret_cast<const char*>(payload), size};
  }
}

std::string FrameReader::Head() {
  for (std::size_t size = 4;; ++size) {
    const std::string_view head{reinterpret_cast<const char*>(Need(size)), size};
    if (!head.ends_with("\r\n\r\n")) continue;
    begin_ += size;
    return std::string{head};
  }
}

Socket Upgraded(std::uint16_t port) {
  auto socket = ConnectTcp(port);
  FrameReader reader{socket};
  Upgrade(socket, reader, port);
  return socket;
}

Socket Subscribed(std::uint16_t port, std::string_view path) {
  auto socket = ConnectTcp(port);
  FrameReader reader{socket};
  Upgrade(socket, reader, port);
  SendText(socket, R"({"action":"subscribe","requestId":"1","path":")" + std::string{path} + "\"}");
  while (reader.Next().find(R"("event":"snapshot")") == std::string_view::npos) {
  }
  return socket;
}

void SendText(const Socket& socket, std::string_view text) {
  if (text.size() > 125) throw std::invalid_argument("a text too long for this benchmark");
  std::vector<unsigned char> frame{kFinalText, static_cast<unsigned char>(0x80U | text.size()), 0, 0, 0,
                                   0};  // a mask of zeros hides nothing
  frame.insert(frame.end(), text.begin(), text.end());
  socket.Send(frame);
}

std::vector<unsigned char> ServerFrame(std::string_view text) {
  const std::array<unsigned char, 4> head{kFinalText, 126, static_cast<unsigned char>(text.size() >> 8U),
                                          static_cast<unsigned char>(text.size())};
  std::vector<unsigned char> frame(head.size() + text.size());
  std::copy(text.begin(), text.end(), std::copy(head.begin(), head.end(), frame.begin()));
  return frame;
}

}  // namespace bench
