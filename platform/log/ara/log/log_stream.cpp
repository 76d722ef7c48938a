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
  impl::Backend::Instance().Submit({std::chrono::system_clock::now(), level_, &logger_, {text_, size_}});
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
