#include "tests/support/bridge.h"

#include <algorithm>
#include <fstream>
#include <iterator>
#include <stdexcept>

namespace test_support {

namespace {

constexpr std::string_view kListening = "Listening on http://127.0.0.1:";

std::string Content(const std::filesystem::path& path) {
  std::ifstream file{path, std::ios::binary};
  return {std::istreambuf_iterator<char>{file}, {}};
}

std::string Tail(const std::vector<LogLine>& lines) {
  std::string tail;
  for (auto line = lines.end() - std::min<std::ptrdiff_t>(std::ssize(lines), 15); line != lines.end(); ++line) tail += "\n" + line->raw;
  return tail;
}

}  // namespace

Bridge::Bridge(const TempRoot& root) : root_{root}, manager_{root.NotifyPath()}, log_{root.LogPath()} {}

void Bridge::Start(const std::map<std::string, std::optional<std::string>>& environment) {
  ProcessOptions options{.program = ProgramBesideThisTest("charging_management_core"),
                         .arguments = {},
                         .environment = environment,
                         .outputPath = root_.Path() / "stdout",
                         .errorPath = root_.Path() / "stderr"};
  options.environment.emplace("ARA_ROOT", root_.Path().string());
  options.environment.emplace("ARA_LOG", "file:" + root_.LogPath().string());
  options.environment.emplace("NOTIFY_SOCKET", root_.NotifyPath().string());
  const auto& lines = log_.Lines();
  listened_ =
      static_cast<std::size_t>(std::count_if(lines.begin(), lines.end(), [](const auto& l) { return l.text.starts_with(kListening); }));
  port_ = 0;
  process_ = std::make_unique<Process>(options);
}

std::uint16_t Bridge::Port() {
  if (port_) return port_;
  const auto line = log_.WaitForLine(kListening, listened_ + 1, std::chrono::seconds{30});
  if (!line) throw std::runtime_error("the program does not listen; the end of its log:" + Tail(log_.Lines()) + "\n" + StandardError());
  port_ = static_cast<std::uint16_t>(std::stoul(line->text.substr(line->text.find(kListening) + kListening.size())));
  return port_;
}

std::string Bridge::StandardOutput() const {
  return Content(root_.Path() / "stdout");
}
std::string Bridge::StandardError() const {
  return Content(root_.Path() / "stderr");
}

std::optional<ExitStatus> Bridge::Stop(int signal) {
  process_->Signal(signal);
  return process_->WaitForEnd();
}

}  // namespace test_support
