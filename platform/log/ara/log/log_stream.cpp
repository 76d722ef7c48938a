#include "ara/log/log_stream.h"

#include "ara/log/impl/backend.h"
#include "ara/log/impl/text.h"
#include "ara/log/logger.h"

#include <chrono>
#include <cstring>

namespace ara::log {

LogStream::LogStream(LogLevel level, const Logger& logger) noexcept
    : logger_{logger}, level_{level}, enabled_{logger.IsLogEnabled(level)} {}

LogStream::~LogStream() {
  if (!enabled_) return;
  impl::Backend::Instance().Submit({std::chrono::system_clock::now(), level_, &logger_, {begin_, size_}});
}

LogStream& LogStream::operator<<(WholeLine line) noexcept {
  if (!enabled_) return *this;
  const std::string_view text = impl::CutOnCharacter(line.text, WholeLine::kLimit);
  begin_ = text.data();
  size_ = text.size();
  full_ = true;
  return *this;
}

void LogStream::Append(std::string_view text) noexcept {
  if (full_) return;
  const std::size_t room = kLineLimit - size_;
  const std::string_view item = impl::CutOnCharacter(text, kItemLimit);
  const std::string_view fitting = impl::CutOnCharacter(item, room);
  full_ = fitting.size() < item.size();  // nothing may follow a gap
  std::memcpy(text_ + size_, fitting.data(), fitting.size());
  size_ += fitting.size();
}

}  // namespace ara::log
