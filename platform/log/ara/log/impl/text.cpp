#include "ara/log/impl/text.h"

namespace ara::log::impl {

namespace {

constexpr bool IsContinuation(char byte) noexcept {
  return (static_cast<unsigned char>(byte) & 0xC0U) == 0x80U;
}

constexpr bool IsControl(char byte) noexcept {
  return static_cast<unsigned char>(byte) < 0x20U || byte == 0x7F;
}

/// Looks at the whole text whatever it meets, which the compiler turns into sixteen bytes at a time.
bool HasControl(std::string_view text) noexcept {
  unsigned char found = 0;
  for (const char byte : text) found |= static_cast<unsigned char>(IsControl(byte));
  return found != 0;
}

}  // namespace

std::string_view CutOnCharacter(std::string_view text, std::size_t limit) noexcept {
  if (text.size() <= limit) return text;
  constexpr std::size_t kLongestTail = 3;  // continuation bytes of one character; more of them are no UTF-8 and cut anywhere
  std::size_t end = limit;
  while (end > 0 && limit - end < kLongestTail && IsContinuation(text[end])) --end;
  return text.substr(0, IsContinuation(text[end]) ? limit : end);
}

void AppendEscaped(std::string& out, std::string_view text) {
  if (!HasControl(text)) {  // nearly every line
    out += text;
    return;
  }
  constexpr char kDigits[] = "0123456789ABCDEF";
  std::size_t plain = 0;
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (!IsControl(text[i])) continue;
    out.append(text, plain, i - plain);
    const auto byte = static_cast<unsigned char>(text[i]);
    const char escape[] = {'\\', 'x', kDigits[byte >> 4U], kDigits[byte & 0x0FU]};
    out.append(escape, sizeof escape);
    plain = i + 1;
  }
  out.append(text, plain);
}

}  // namespace ara::log::impl
