#include "ara/log/impl/dlt_sink.h"

#include "ara/log/impl/dlt_context_ids.h"
#include "ara/log/impl/text.h"
#include "ara/log/logger.h"
#include "os/thread.h"

#include <dlt/dlt.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <csignal>
#include <cstdint>
#include <cstring>
#include <functional>
#include <map>
#include <mutex>
#include <ratio>
#include <stdexcept>
#include <string_view>
#include <unordered_map>
#include <utility>

namespace ara::log::impl {

namespace {

constexpr std::chrono::milliseconds kPatience{200};
// What libdlt's buffer of one message leaves after type (4), length (2) and end of the text (1).
constexpr std::size_t kTextLimit = DLT_USER_BUF_MAX_SIZE - 7;

/// libdlt ignores SIGPIPE for the whole process when it starts; that is for the application to decide. Its messages are written by
/// threads that block the signal.
class SigPipeKept {
 public:
  SigPipeKept() noexcept { ::sigaction(SIGPIPE, nullptr, &before_); }
  ~SigPipeKept() { ::sigaction(SIGPIPE, &before_, nullptr); }
  SigPipeKept(const SigPipeKept&) = delete;
  SigPipeKept& operator=(const SigPipeKept&) = delete;

 private:
  struct sigaction before_ {};
};

/// What libdlt's callback needs to know: the logger behind each DLT id. The callback has no argument for it, so there is one such table,
/// never destroyed.
///
/// A daemon that comes late, or once more, gets the contexts from libdlt without their levels and answers with its own default. Without a
/// viewer such an answer is nobody's wish: the context is to be registered again, with its level, which the daemon leaves unanswered.
class Contexts {
 public:
  static Contexts& Instance() {
    static Contexts& instance = *new Contexts;
    return instance;
  }

  void SetHandler(LevelHandler onLevel) {
    const std::lock_guard lock{mutex_};
    onLevel_ = std::move(onLevel);
  }
  void Add(const std::string& id, const Logger& logger) {
    const std::lock_guard lock{mutex_};
    known_.emplace(id, Known{&logger});
  }

  /// Whether any context is to be registered again; asked before each line, hence without the lock.
  bool HasLost() noexcept { return hasLost_.load(std::memory_order_relaxed) && hasLost_.exchange(false); }
  /// True once for each loss of this context's level.
  bool TakeLost(const std::string& id) {
    const std::lock_guard lock{mutex_};
    const auto found = known_.find(id);
    return found != known_.end() && std::exchange(found->second.isLost, false);
  }

  /// libdlt's callback, on its own thread.
  static void OnLevelChanged(char id[DLT_ID_SIZE], std::uint8_t level, std::uint8_t /*traceStatus*/) noexcept {
    if (level <= static_cast<std::uint8_t>(LogLevel::kVerbose)) {
      Instance().Change({id, ::strnlen(id, DLT_ID_SIZE)}, static_cast<LogLevel>(level));
    }
  }

 private:
  struct Known {
    const Logger* logger;
    bool isLost = false;
  };

  void Change(std::string_view id, LogLevel level) {
    constexpr int kViewerConnected = 1;
    const std::lock_guard lock{mutex_};
    const auto found = known_.find(id);
    if (found == known_.end()) return;
    Known& known = found->second;
    if (level != known.logger->Level() && ::dlt_get_log_state() != kViewerConnected) {
      known.isLost = true;
      hasLost_ = true;
      return;
    }
    known.isLost = false;
    onLevel_(*known.logger, level);
  }

  std::atomic<bool> hasLost_{false};

  // Guards the members below. It is held while the handler runs, and not while libdlt registers a context.
  std::mutex mutex_;
  LevelHandler onLevel_;
  std::map<std::string, Known, std::less<>> known_;
};

class DltSink final : public Sink {
 public:
  DltSink(const std::string& applicationId, const std::string& description, LevelHandler onLevel) {
    Contexts::Instance().SetHandler(std::move(onLevel));
    const SigPipeKept disposition;
    const os::SignalsBlocked blocked;  // its threads inherit the mask
    ::dlt_log_init(DLT_LOG_DROPPED);   // its notices about itself, which otherwise land on standard output
    if (::dlt_init() < DLT_RETURN_OK || ::dlt_register_app(applicationId.c_str(), description.c_str()) < DLT_RETURN_OK) {
      throw std::runtime_error{"Cannot initialise the DLT library"};
    }
    ::dlt_set_resend_timeout_atexit(static_cast<std::uint32_t>(kPatience.count()));
  }

  void Introduce(const Logger& logger) override {
    if (!closed_) (void)ContextOf(logger);
  }

  void Write(const Record& record) override {
    if (closed_) return;
    DltContext& context = ContextOf(*record.logger);
    if (Contexts::Instance().HasLost()) RegisterLost();
    escaped_.clear();
    AppendEscaped(escaped_, record.text);  // before the message is begun: without memory it throws
    DltContextData message{};
    if (::dlt_user_log_write_start(&context, &message, static_cast<DltLogLevelType>(record.level)) != DLT_RETURN_TRUE) {
      return;  // a DLT client has turned this context down
    }
    message.use_timestamp = DLT_USER_TIMESTAMP;
    message.user_timestamp = UptimeAt(record.time);
    const std::string_view text = CutOnCharacter(escaped_, kTextLimit);
    ::dlt_user_log_write_sized_utf8_string(&message, text.data(), static_cast<std::uint16_t>(text.size()));
    ::dlt_user_log_write_finish(&message);
  }

  std::size_t Flush() noexcept override { return 0; }  // libdlt hands on each message at once

  void Close(std::chrono::milliseconds left) noexcept override {
    closed_ = true;
    ::dlt_set_resend_timeout_atexit(static_cast<std::uint32_t>(left.count()));
    ::dlt_user_atexit_blow_out_user_buffer();
    ::dlt_set_resend_timeout_atexit(0);  // the library's own handler would wait once more
  }

  std::chrono::milliseconds Patience() const noexcept override { return kPatience; }

 private:
  struct Context {
    DltContext handle;
    std::string id, description;
  };

  static void Register(Context& context, LogLevel level) noexcept {
    ::dlt_register_context_ll_ts(&context.handle, context.id.c_str(), context.description.c_str(), static_cast<int>(level),
                                 DLT_TRACE_STATUS_OFF);
    ::dlt_register_log_level_changed_callback(&context.handle, &Contexts::OnLevelChanged);
  }

  void RegisterLost() {
    for (auto& [logger, context] : contexts_) {
      if (!Contexts::Instance().TakeLost(context.id)) continue;
      ::dlt_unregister_context(&context.handle);
      Register(context, logger->Level());
    }
  }

  DltContext& ContextOf(const Logger& logger) {
    const auto known = contexts_.find(&logger);
    if (known != contexts_.end()) return known->second.handle;
    std::string description = logger.ContextId() + ": " + logger.Description();
    std::string id = ids_.Take(logger.ContextId());
    Contexts::Instance().Add(id, logger);
    // The last that may throw: what is in the map is registered.
    Context& context = contexts_.try_emplace(&logger, Context{{}, std::move(id), std::move(description)}).first->second;
    Register(context, logger.Level());
    return context.handle;
  }

  /// DLT's clock, tenths of a millisecond since the machine's start, at the time the record was made.
  static std::uint32_t UptimeAt(std::chrono::system_clock::time_point time) noexcept {
    using Tick = std::chrono::duration<std::int64_t, std::ratio<1, 10'000>>;
    const auto age = std::chrono::duration_cast<Tick>(std::chrono::system_clock::now() - time);
    const auto now = static_cast<std::int64_t>(::dlt_uptime());
    return static_cast<std::uint32_t>(std::clamp<std::int64_t>(now - age.count(), 0, now));
  }

  DltContextIds ids_;
  std::unordered_map<const Logger*, Context> contexts_;  // nodes stay where they are, as libdlt expects of a context
  std::string escaped_;
  bool closed_ = false;
};

}  // namespace

std::unique_ptr<Sink> MakeDltSink(const std::string& applicationId, const std::string& description, LevelHandler onLevel) {
  return std::make_unique<DltSink>(applicationId, description, std::move(onLevel));
}

}  // namespace ara::log::impl
