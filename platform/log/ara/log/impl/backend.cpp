#include "ara/log/impl/backend.h"

#include <algorithm>
#include <exception>
#include <stdexcept>
#include <utility>

namespace ara::log::impl {

Backend& Backend::Instance() {
  static Backend& instance = *new Backend;
  return instance;
}

Backend::Backend() : defaultLogger_{LoggerOf("DFLT", "Default")} {}

Logger& Backend::LoggerOf(std::string contextId, std::string description) {
  Logger& logger = FindOrAdd(std::move(contextId), std::move(description));
  // Either `Start` sees the logger or the logger's maker sees the writer; both at once do no harm.
  if (Writer* const writer = writer_.load(std::memory_order_acquire)) writer->Introduce(logger);
  return logger;
}

Logger& Backend::FindOrAdd(std::string contextId, std::string description) {
  const std::lock_guard lock{loggersMutex_};
  const auto known = std::find_if(loggers_.begin(), loggers_.end(), [&](const Logger& logger) {
    return logger.ContextId() == contextId && logger.Description() == description;
  });
  if (known != loggers_.end()) return *known;
  const LogLevel level = levels_.Of(contextId);
  return loggers_.emplace_back(std::move(contextId), std::move(description), level);
}

Levels Backend::SetLevels(Levels levels) {
  const std::lock_guard lock{loggersMutex_};
  for (Logger& logger : loggers_) logger.SetLevel(levels.Of(logger.ContextId()));
  return std::exchange(levels_, std::move(levels));
}

void Backend::SetLevelOf(const Logger& logger, LogLevel level) {
  const std::lock_guard lock{loggersMutex_};
  for (Logger& known : loggers_) {
    if (&known == &logger) known.SetLevel(level);
  }
}

void Backend::ExpectNotStarted() const {
  if (writer_.load(std::memory_order_acquire) != nullptr) throw std::runtime_error{"Logging has been initialised already"};
}

void Backend::Start(std::unique_ptr<Sink> sink) {
  {
    const std::lock_guard lock{earlyMutex_};
    ExpectNotStarted();
    writer_.store(new Writer{std::move(sink), defaultLogger_, early_.Take()}, std::memory_order_release);
  }
  Writer& writer = *writer_.load(std::memory_order_relaxed);
  for (std::size_t i = 0; const Logger* const logger = LoggerAt(i); ++i) writer.Introduce(*logger);
}

const Logger* Backend::LoggerAt(std::size_t index) {
  const std::lock_guard lock{loggersMutex_};
  return index < loggers_.size() ? &loggers_[index] : nullptr;
}

void Backend::Submit(const Record& record) noexcept {
  try {
    if (hasListeners_.load(std::memory_order_relaxed)) TellListeners(record);
    if (Writer* const writer = writer_.load(std::memory_order_acquire)) {
      writer->Push(record);
    } else {
      SubmitEarly(record);
    }
  } catch (const std::exception&) {
    // No memory to keep a record that nobody writes yet: it goes the way of the oldest ones.
  }
}

void Backend::SubmitEarly(const Record& record) {
  const std::lock_guard lock{earlyMutex_};
  if (Writer* const writer = writer_.load(std::memory_order_relaxed)) {
    writer->Push(record);
  } else {
    early_.Keep(record);
  }
}

void Backend::Drain() noexcept {
  if (Writer* const writer = writer_.load(std::memory_order_acquire)) writer->Drain();
}

void Backend::Stop() noexcept {
  if (Writer* const writer = writer_.load(std::memory_order_acquire)) writer->Stop();
}

void Backend::Register(std::shared_ptr<Listener> listener) {
  const std::lock_guard lock{listenersMutex_};
  listeners_.push_back(std::move(listener));
  hasListeners_ = true;
}

void Backend::Unregister(const Listener* listener) {
  const std::lock_guard lock{listenersMutex_};
  std::erase_if(listeners_, [listener](const auto& known) { return known.get() == listener; });
  hasListeners_ = !listeners_.empty();
}

void Backend::TellListeners(const Record& record) {
  const std::lock_guard lock{listenersMutex_};
  for (const auto& listener : listeners_) listener->Heard(record);
}

}  // namespace ara::log::impl
