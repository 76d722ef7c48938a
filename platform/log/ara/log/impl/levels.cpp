#include "ara/log/impl/levels.h"

#include <algorithm>
#include <array>
#include <cstddef>

namespace ara::log::impl {

namespace {

constexpr std::array<std::string_view, 6> kWords{"fatal", "error", "warn", "info", "debug", "verbose"};

std::optional<LogLevel> ReadLevel(std::string_view word) {
  const auto found = std::find(kWords.begin(), kWords.end(), word);
  if (found == kWords.end()) return std::nullopt;
  return static_cast<LogLevel>(found - kWords.begin() + 1);
}

/// Cuts off and returns what stands before the first `separator`; without one all of it.
std::string_view TakeUntil(char separator, std::string_view& text) {
  const std::size_t end = std::min(text.find(separator), text.size());
  const std::string_view head = text.substr(0, end);
  text.remove_prefix(std::min(end + 1, text.size()));
  return head;
}

}  // namespace

std::optional<Levels> ReadLevels(std::string_view text, LogLevel others) {
  if (const auto one = ReadLevel(text)) return Levels{*one};
  Levels levels{others};
  bool more = true;
  while (more) {
    more = text.find(',') != std::string_view::npos;
    std::string_view word = TakeUntil(',', text);
    const std::string_view context = TakeUntil('=', word);
    const auto level = ReadLevel(word);
    if (context.empty() || !level || !levels.byContext.emplace(context, *level).second) return std::nullopt;
  }
  if (const auto star = levels.byContext.extract("*")) levels.others = star.mapped();
  return levels;
}

}  // namespace ara::log::impl
