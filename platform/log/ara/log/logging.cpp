#include "ara/log/logging.h"

#include "ara/log/impl/backend.h"
#include "ara/log/impl/dlt_sink.h"
#include "ara/log/impl/levels.h"
#include "ara/log/impl/line_sink.h"

#include <cstdlib>
#include <exception>
#include <memory>
#include <stdexcept>
#include <string_view>
#include <utility>

namespace ara::log {

namespace {

using impl::Backend;

struct Target {
  LogMode mode;
  std::string path;
};

/// Empty if it is unset.
std::string_view FromEnvironment(const char* name) {
  const char* const variable = std::getenv(name);
  return variable == nullptr ? std::string_view{} : std::string_view{variable};
}

/// ARA_LOG, or the caller's choice if it is unset or empty.
Target ChooseTarget(LogMode mode, std::string path) {
  const std::string_view wanted = FromEnvironment("ARA_LOG");
  constexpr std::string_view kFile = "file:";
  if (wanted.empty()) return {mode, std::move(path)};
  if (wanted == "dlt") return {LogMode::kRemote, {}};
  if (wanted == "console") return {LogMode::kConsole, {}};
  if (wanted.size() > kFile.size() && wanted.substr(0, kFile.size()) == kFile) {
    return {LogMode::kFile, std::string{wanted.substr(kFile.size())}};
  }
  throw std::runtime_error{"ARA_LOG is \"" + std::string{wanted} + "\", but must be dlt, console or file:<path>"};
}

std::unique_ptr<impl::Sink> OpenSink(const Target& target, std::string applicationId, const std::string& description) {
  switch (target.mode) {
    case LogMode::kRemote:
      return impl::MakeDltSink(applicationId, description,
                               [](const Logger& logger, LogLevel level) { Backend::Instance().SetLevelOf(logger, level); });
    case LogMode::kConsole:
      return impl::LineSink::OnConsole(std::move(applicationId));
    case LogMode::kFile:
      return impl::LineSink::OnFile(std::move(applicationId), target.path);
  }
  throw std::runtime_error{"Unknown log mode " + std::to_string(static_cast<unsigned>(target.mode))};
}

std::terminate_handler terminateBefore = nullptr;

void LogUncaught() {
  const auto uncaught = std::current_exception();
  if (!uncaught) return;
  try {
    std::rethrow_exception(uncaught);
  } catch (const std::exception& error) {
    LogFatal() << "Terminated by an exception: " << error;
  } catch (...) {  // whatever it is, the process ends with it
    LogFatal() << "Terminated by an unknown exception";
  }
}

[[noreturn]] void WriteLastWords() {
  LogUncaught();
  Backend::Instance().Stop();
  if (terminateBefore != nullptr) terminateBefore();
  std::abort();
}

}  // namespace

void InitLogging(std::string applicationId, const std::string& description, LogLevel defaultLevel, LogMode mode, std::string path) {
  Backend& backend = Backend::Instance();
  backend.ExpectNotStarted();
  auto sink = OpenSink(ChooseTarget(mode, std::move(path)), std::move(applicationId), description);
  const std::string_view wanted = FromEnvironment("ARA_LOG_LEVEL");
  auto levels = wanted.empty() ? impl::Levels{defaultLevel} : impl::ReadLevels(wanted, defaultLevel);
  backend.SetLevels(levels.value_or(impl::Levels{defaultLevel}));
  backend.Start(std::move(sink));
  if (!levels) {
    LogWarn() << "ARA_LOG_LEVEL is \"" << wanted << "\", but must be one of fatal, error, warn, info, debug, verbose, or pairs such as "
              << "TROV=info,*=debug: it is ignored";
  }
  terminateBefore = std::set_terminate(WriteLastWords);
  (void)std::atexit([] { Backend::Instance().Stop(); });  // after libdlt's own handler, hence called before it
}

Logger& CreateLogger(std::string contextId, std::string description) {
  return Backend::Instance().LoggerOf(std::move(contextId), std::move(description));
}

LogStream LogFatal() noexcept {
  return Backend::Instance().DefaultLogger().LogFatal();
}
LogStream LogError() noexcept {
  return Backend::Instance().DefaultLogger().LogError();
}
LogStream LogWarn() noexcept {
  return Backend::Instance().DefaultLogger().LogWarn();
}
LogStream LogInfo() noexcept {
  return Backend::Instance().DefaultLogger().LogInfo();
}
LogStream LogDebug() noexcept {
  return Backend::Instance().DefaultLogger().LogDebug();
}
LogStream LogVerbose() noexcept {
  return Backend::Instance().DefaultLogger().LogVerbose();
}

void DrainLogging() noexcept {
  Backend::Instance().Drain();
}

}  // namespace ara::log
