#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "fuzz/bridge.h"
#include "fuzz/bridges.h"
#include "fuzz/fail.h"

namespace {

constexpr std::string_view kVersion = "HTTP/1.1 ";
constexpr std::string_view kContinue = "100";
constexpr std::string_view kSwitching = "101";

/// The value of a field of a head; empty if it has none.
std::string_view FieldOf(std::string_view head, std::string_view name) {
  const auto at = head.find(name);
  if (at == std::string_view::npos) return {};
  const auto begin = at + name.size();
  return head.substr(begin, head.find('\r', begin) - begin);
}

/// Takes an answer off the front and gives its code; the next one's status line or nothing must stand behind it.
std::string TakeAnswer(std::string_view& answers) {
  if (!answers.starts_with(kVersion)) fuzz::Fail("what comes is no answer: " + std::string{answers.substr(0, 100)});
  const auto end = answers.find("\r\n\r\n");
  if (end == std::string_view::npos) fuzz::Fail("a head is cut off");
  const auto head = answers.substr(0, end + 2);
  answers.remove_prefix(end + 4);
  std::string code{head.substr(kVersion.size(), 3)};
  if (code == kSwitching) answers = {};
  const auto length = FieldOf(head, "\r\nContent-Length: ");
  if (length.empty() || answers.empty() || answers.starts_with(kVersion)) return code;  // none, or that of a HEAD
  const auto size = std::stoul(std::string{length});
  if (size > answers.size()) fuzz::Fail("a body is cut off");
  if (FieldOf(head, "\r\nContent-Type: ").find("json") != std::string_view::npos) fuzz::CheckJson(answers.substr(0, size));
  answers.remove_prefix(size);
  return code;
}

/// The codes of all answers to these bytes, cut up like that.
std::vector<std::string> Codes(fuzz::Bridge& bridge, std::string_view bytes, std::size_t piece) {
  fuzz::Client client{bridge};
  for (const auto part : fuzz::Cut(bytes, piece)) client.Send(part);
  const auto received = client.End();
  std::vector<std::string> codes;
  for (std::string_view answers = received; !answers.empty();) codes.push_back(TakeAnswer(answers));
  return codes;
}

/// Whether it shows in the answers how the bytes come: nothing may stand behind an upgrade, and a body that has come is not asked for.
bool DependsOnPieces(const std::vector<std::string>& codes) {
  return !codes.empty() && (codes.back() == kSwitching || std::find(codes.begin(), codes.end(), kContinue) != codes.end());
}

/// One that ends the connection is as good as another: which fault is seen first, and whether before the end has come, does depend on it.
void ForgetFault(std::vector<std::string>& codes) {
  constexpr std::array<std::string_view, 4> kFaults{"400", "408", "413", "431"};
  if (!codes.empty() && std::find(kFaults.begin(), kFaults.end(), codes.back()) != kFaults.end()) codes.back() = "fault";
}

std::string Joined(const std::vector<std::string>& codes) {
  std::string text;
  for (const auto& code : codes) text += code + ' ';
  return text;
}

}  // namespace

// A client's bytes on a new connection, all the answers back. The first byte says to which server they go, the open one or the guarded
// one, and how they are cut up; in one piece they must have the same answers.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static fuzz::Bridges bridges;
  if (size == 0) return 0;
  auto& bridge = bridges.Chosen((data[0] & 1U) != 0);
  const auto bytes = bridge.WithPaths({reinterpret_cast<const char*>(data + 1), size - 1});
  const std::size_t piece = data[0] / 2;
  auto codes = Codes(bridge, bytes, piece);
  if (piece == 0 || DependsOnPieces(codes)) return 0;
  auto whole = Codes(bridge, bytes, 0);
  ForgetFault(codes);
  ForgetFault(whole);
  if (codes != whole) fuzz::Fail("in pieces the bytes have other answers: " + Joined(codes) + "but " + Joined(whole));
  return 0;
}
