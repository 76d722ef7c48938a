#pragma once

#include "tests/support/wait_for.h"

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace test_support {

/// The whole lines of a file that another process writes, read as they come.
class LineFile {
 public:
  explicit LineFile(std::filesystem::path path) : path_{std::move(path)} {}
  /// All whole lines so far, without their ends. A file that does not exist yet has none.
  const std::vector<std::string>& Lines();

 private:
  std::filesystem::path path_;
  std::uintmax_t read_ = 0;
  std::string rest_;
  std::vector<std::string> lines_;
};

struct LogLine {
  std::string time, level, application, context, text;
  std::string raw;  ///< the whole line
};

/// The program's log file, line by line: `<time> <level> <application> <context> <text>`.
class LogFile {
 public:
  explicit LogFile(std::filesystem::path path) : lines_{std::move(path)} {}

  /// All whole lines so far.
  const std::vector<LogLine>& Lines();
  /// How many lines have exactly this text.
  std::size_t Count(std::string_view text);
  /// Waits until `count` lines contain the text; the last of them, or nothing if the deadline passes before.
  std::optional<LogLine> WaitForLine(std::string_view part, std::size_t count = 1, std::chrono::milliseconds deadline = kPatience);
  /// The first of these texts that is not the text of a whole line behind the line of the text before it; empty if all are there.
  std::string FirstMissing(const std::vector<std::string>& textsInOrder);

 private:
  LineFile lines_;
  std::vector<LogLine> parsed_;
};

}  // namespace test_support
