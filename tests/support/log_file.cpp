#include "tests/support/log_file.h"

#include <algorithm>
#include <fstream>
#include <iterator>

namespace test_support {

namespace {

std::string TakeWord(std::string_view& rest) {
  const auto end = std::min(rest.find(' '), rest.size());
  std::string word{rest.substr(0, end)};
  rest.remove_prefix(std::min(end + 1, rest.size()));
  return word;
}

LogLine Parse(const std::string& raw) {
  LogLine line;
  std::string_view rest = raw;
  for (auto* part : {&line.time, &line.level, &line.application, &line.context}) *part = TakeWord(rest);
  line.text = rest;
  line.raw = raw;
  return line;
}

}  // namespace

const std::vector<std::string>& LineFile::Lines() {
  std::ifstream file{path_, std::ios::binary};
  if (!file || !file.seekg(static_cast<std::streamoff>(read_))) return lines_;
  const std::string fresh{std::istreambuf_iterator<char>{file}, {}};
  read_ += fresh.size();
  rest_ += fresh;
  std::size_t begin = 0;
  for (auto end = rest_.find('\n'); end != std::string::npos; end = rest_.find('\n', begin)) {
    lines_.push_back(rest_.substr(begin, end - begin));
    begin = end + 1;
  }
  rest_.erase(0, begin);
  return lines_;
}

const std::vector<LogLine>& LogFile::Lines() {
  const auto& raw = lines_.Lines();
  while (parsed_.size() < raw.size()) parsed_.push_back(Parse(raw[parsed_.size()]));
  return parsed_;
}

std::size_t LogFile::Count(std::string_view text) {
  const auto& lines = Lines();
  return static_cast<std::size_t>(std::count_if(lines.begin(), lines.end(), [&](const LogLine& line) { return line.text == text; }));
}

std::optional<LogLine> LogFile::WaitForLine(std::string_view part, std::size_t count, std::chrono::milliseconds deadline) {
  std::size_t next = 0, found = 0;
  return WaitFor(
      [&]() -> std::optional<LogLine> {
        const auto& lines = Lines();
        for (; next < lines.size(); ++next)
          if (lines[next].text.find(part) != std::string::npos && ++found == count) return lines[next];
        return {};
      },
      deadline);
}

std::string LogFile::FirstMissing(const std::vector<std::string>& textsInOrder) {
  const auto& lines = Lines();
  auto at = lines.begin();
  for (const auto& text : textsInOrder) {
    at = std::find_if(at, lines.end(), [&](const LogLine& line) { return line.text == text; });
    if (at == lines.end()) return text;
    ++at;
  }
  return {};
}

}  // namespace test_support
