#pragma once

#include "ara/log/impl/early_records.h"
#include "ara/log/impl/levels.h"
#include "ara/log/impl/record.h"
#include "ara/log/impl/sink.h"
#include "ara/log/impl/writer.h"
#include "ara/log/logger.h"

#include <atomic>
#include <cstddef>
#include <deque>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

namespace ara::log::impl {

/// Gets a copy of each record while it is registered; called by the thread that logs.
class Listener {
 public:
  virtual ~Listener() = default;
  virtual void Heard(const Record& record) = 0;
};

/// What logging has once a process: the loggers, and the way of a record to the writer. Never destroyed, so that logging works in
/// every constructor and destructor of the process.
class Backend {
 public:
  static Backend& Instance();

  Logger& LoggerOf(std::string contextId, std::string description);
  const Logger& DefaultLogger() const noexcept { return defaultLogger_; }
  /// The levels of all loggers, present and future; returns those before.
  Levels SetLevels(Levels levels);
  /// The level of one logger, whatever its context.
  void SetLevelOf(const Logger& logger, LogLevel level);

  /// Throws `std::runtime_error` if there is a writer already.
  void Start(std::unique_ptr<Sink> sink);
  /// Throws `std::runtime_error` if there is a writer already.
  void ExpectNotStarted() const;
  void Submit(const Record& record) noexcept;
  void Drain() noexcept;
  void Stop() noexcept;

  void Register(std::shared_ptr<Listener> listener);
  void Unregister(const Listener* listener);

 private:
  Backend();
  Logger& FindOrAdd(std::string contextId, std::string description);
  const Logger* LoggerAt(std::size_t index);  // null behind the last one
  void TellListeners(const Record& record);
  void SubmitEarly(const Record& record);

  std::atomic<Writer*> writer_{nullptr};  // set once, never destroyed
  std::atomic<bool> hasListeners_{false};

  // Guards early_, and the moment in which a writer takes over.
  std::mutex earlyMutex_;
  EarlyRecords early_;

  // Guards the list of loggers and their levels as set here; the loggers themselves stay where they are.
  std::mutex loggersMutex_;
  Levels levels_;
  std::deque<Logger> loggers_;

  // Guards listeners_.
  std::mutex listenersMutex_;
  std::vector<std::shared_ptr<Listener>> listeners_;

  Logger& defaultLogger_;
};

}  // namespace ara::log::impl
