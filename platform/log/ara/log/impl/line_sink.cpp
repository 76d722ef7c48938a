#include "ara/log/impl/line_sink.h"

#include "ara/log/impl/text.h"
#include "ara/log/logger.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <climits>
#include <stdexcept>
#include <string_view>
#include <system_error>
#include <utility>

namespace ara::log::impl {

namespace {

constexpr std::size_t kBlock = std::size_t{64} * 1024;
constexpr std::array<std::string_view, 7> kLevelWords{"OFF", "FATAL", "ERROR", "WARN", "INFO", "DEBUG", "VERBOSE"};

bool IsFile(int descriptor) noexcept {
  struct stat status {};
  return ::fstat(descriptor, &status) == 0 && S_ISREG(status.st_mode);
}

/// False if the descriptor does not take the whole block, or no part of it for a second.
bool WriteAll(int descriptor, bool isFile, std::string_view block) noexcept {
  while (!block.empty()) {
    // A terminal or pipe that nobody reads must not hold up the end of the process: ready to write means ready for PIPE_BUF bytes.
    pollfd wanted{descriptor, POLLOUT, 0};
    if (!isFile && ::poll(&wanted, 1, 1000) == 0) return false;
    const auto written = ::write(descriptor, block.data(), isFile ? block.size() : std::min<std::size_t>(block.size(), PIPE_BUF));
    if (written >= 0) {
      block.remove_prefix(static_cast<std::size_t>(written));
    } else if (errno != EINTR && errno != EAGAIN) {
      return false;
    }
  }
  return true;
}

}  // namespace

std::unique_ptr<Sink> LineSink::OnConsole(std::string applicationId) {
  return std::unique_ptr<Sink>{new LineSink{std::move(applicationId), STDERR_FILENO, false}};
}

std::unique_ptr<Sink> LineSink::OnFile(std::string applicationId, const std::string& path) {
  const int descriptor = ::open(path.c_str(), O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC | O_NOCTTY, 0644);
  if (descriptor < 0) {
    throw std::runtime_error{"Cannot open log file " + path + ": " + std::generic_category().message(errno)};
  }
  return std::unique_ptr<Sink>{new LineSink{std::move(applicationId), descriptor, true}};
}

LineSink::LineSink(std::string applicationId, int descriptor, bool owned)
    : applicationId_{std::move(applicationId)}, descriptor_{descriptor}, owned_{owned}, isFile_{IsFile(descriptor)} {
  block_.reserve(2 * kBlock);
}

LineSink::~LineSink() {
  if (owned_) ::close(descriptor_);
}

void LineSink::Write(const Record& record) {
  const std::size_t before = block_.size();
  try {
    Append(record);
  } catch (...) {  // no memory: half a line would run into the next one
    block_.resize(before);
    throw;
  }
  ++records_;
  if (block_.size() >= kBlock) lost_ += Flush();
}

void LineSink::Append(const Record& record) {
  timestamp_.AppendTo(block_, record.time);
  block_ += ' ';
  block_ += kLevelWords.at(static_cast<std::size_t>(record.level));
  block_ += ' ';
  block_ += applicationId_;
  block_ += ' ';
  block_ += record.logger->ContextId();
  block_ += ' ';
  AppendEscaped(block_, record.text);
  block_ += '\n';
}

std::size_t LineSink::Flush() noexcept {
  if (!block_.empty() && !WriteAll(descriptor_, isFile_, block_)) lost_ += records_;
  block_.clear();
  records_ = 0;
  return std::exchange(lost_, 0);
}

}  // namespace ara::log::impl
