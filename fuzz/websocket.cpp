#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "fuzz/bridge.h"
#include "fuzz/bridges.h"
#include "fuzz/fail.h"
#include "tests/support/raw_socket.h"

namespace {

constexpr unsigned char kText = 0x81;  // in one piece

std::string Upgrade(bool mayWrite) {
  return "GET / HTTP/1.1\r\nHost: car\r\nConnection: Upgrade\r\nUpgrade: websocket\r\nSec-WebSocket-Version: 13\r\n"
         "Sec-WebSocket-Key: dGhlIHNhbXBsZSBub25jZQ==\r\nSec-WebSocket-Protocol: bearer." +
         std::string{mayWrite ? "w" : "r"} + "\r\n\r\n";
}

/// Each line as a text message: then what is changed are the messages, not their frames.
void SendLines(fuzz::Client& client, std::string_view text) {
  for (;;) {
    const auto end = text.find('\n');
    client.Send(test_support::ClientFrame(kText, text.substr(0, end)));
    if (end == std::string_view::npos) return;
    text.remove_prefix(end + 1);
  }
}

void Check(std::string_view received) {
  const auto head = received.find("\r\n\r\n");
  if (!received.starts_with("HTTP/1.1 101") || head == std::string_view::npos) fuzz::Fail("the upgrade is not taken");
  for (const auto& frame : test_support::Frames(received.substr(head + 4))) {
    if (frame.operation == 1) fuzz::CheckJson(frame.payload);
  }
}

}  // namespace

// What a client sends behind its upgrade. The first byte says whether it may write, whether the bytes are frames as they are or the lines
// that stand in frames, and how they are cut up. Behind them something changes, which subscribers are told of.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static fuzz::Bridges bridges;
  if (size == 0) return 0;
  auto& bridge = bridges.Chosen(true);
  const std::string_view bytes{reinterpret_cast<const char*>(data + 1), size - 1};
  fuzz::Client client{bridge};
  client.Send(Upgrade((data[0] & 1U) != 0));
  if ((data[0] & 2U) != 0) {
    SendLines(client, bridge.WithPaths(bytes));
  } else {
    for (const auto piece : fuzz::Cut(bytes, data[0] / 4)) client.Send(piece);
  }
  bridge.ChangeSomething();
  client.Send(test_support::ClientFrame(kText, R"({"action":"get","path":"/","requestId":1})"));
  Check(client.End());
  return 0;
}
