#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "fuzz/bridge.h"
#include "fuzz/bridges.h"
#include "fuzz/fail.h"

namespace {

constexpr std::string_view kVersion = "HTTP/1.1 ";

/// The value of a field of a head; empty if it has none.
std::string_view FieldOf(std::string_view head, std::string_view name) {
  const auto at = head.find(name);
  if (at == std::string_view::npos) return {};
  const auto begin = at + name.size();
  return head.substr(begin, head.find('\r', begin) - begin);
}

/// Takes an answer off the front, and the next one's status line or nothing must stand behind it.
void TakeAnswer(std::string_view& answers) {
  if (!answers.starts_with(kVersion)) fuzz::Fail("what comes is no answer: " + std::string{answers.substr(0, 100)});
  const auto end = answers.find("\r\n\r\n");
  if (end == std::string_view::npos) fuzz::Fail("a head is cut off");
  const auto head = answers.substr(0, end + 2);
  answers.remove_prefix(end + 4);
  if (head.starts_with("HTTP/1.1 101")) {
    answers = {};
    return;
  }
  const auto length = FieldOf(head, "\r\nContent-Length: ");
  if (length.empty() || answers.empty() || answers.starts_with(kVersion)) return;  // none, or that of a HEAD
  const auto size = std::stoul(std::string{length});
  if (size > answers.size()) fuzz::Fail("a body is cut off");
  const auto body = answers.substr(0, size);
  answers.remove_prefix(size);
  if (FieldOf(head, "\r\nContent-Type: ").find("json") != std::string_view::npos) fuzz::CheckJson(body);
}

}  // namespace

// A client's bytes on a new connection, all the answers back. The first byte says to which server they go, the open one or the guarded
// one, and how they are cut up.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static fuzz::Bridges bridges;
  if (size == 0) return 0;
  auto& bridge = bridges.Chosen((data[0] & 1U) != 0);
  const auto bytes = bridge.WithPaths({reinterpret_cast<const char*>(data + 1), size - 1});
  fuzz::Client client{bridge};
  for (const auto piece : fuzz::Cut(bytes, data[0] / 2)) client.Send(piece);
  const auto received = client.End();
  for (std::string_view answers = received; !answers.empty();) TakeAnswer(answers);
  return 0;
}
