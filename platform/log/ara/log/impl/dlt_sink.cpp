#include "ara/log/impl/dlt_sink.h"

#include "ara/log/impl/dlt_context_ids.h"
#include "ara/log/impl/text.h"
#include "ara/log/logger.h"
#include "os/thread.h"

#include <dlt/dlt.h>

#include <algorithm>
#include <array>
#include <csignal>
#include <cstdint>
#include <ratio>
#include <stdexcept>
#include <unordered_map>

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

class DltSink final : public Sink {
 public:
  DltSink(const std::string& applicationId, const std::string& description) {
    const SigPipeKept disposition;
    const os::SignalsBlocked blocked;  // its threads inherit the mask
    ::dlt_log_init(DLT_LOG_DROPPED);   // its notices about itself, which otherwise land on standard output
    if (::dlt_init() < DLT_RETURN_OK || ::dlt_register_app(applicationId.c_str(), description.c_str()) < DLT_RETURN_OK) {
      throw std::runtime_error{"Cannot initialise the DLT library"};
    }
    ::dlt_set_resend_timeout_atexit(static_cast<std::uint32_t>(kPatience.count()));
  }

  void Write(const Record& record) override {
    if (closed_) return;
    DltContextData message{};
    if (::dlt_user_log_write_start(&ContextOf(*record.logger), &message, static_cast<DltLogLevelType>(record.level)) != DLT_RETURN_TRUE) {
      return;  // a DLT client has turned this context down
    }
    message.use_timestamp = DLT_USER_TIMESTAMP;
    message.user_timestamp = UptimeAt(record.time);
    escaped_.clear();
    AppendEscaped(escaped_, record.text);
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
  DltContext& ContextOf(const Logger& logger) {
    const auto [found, isNew] = contexts_.try_emplace(&logger);
    if (isNew) {
      const std::string id = ids_.Take(logger.ContextId());
      const std::string description = logger.ContextId() + ": " + logger.Description();
      ::dlt_register_context_ll_ts(&found->second, id.c_str(), description.c_str(), static_cast<int>(logger.Level()), DLT_TRACE_STATUS_OFF);
    }
    return found->second;
  }

  /// DLT's clock, tenths of a millisecond since the machine's start, at the time the record was made.
  static std::uint32_t UptimeAt(std::chrono::system_clock::time_point time) noexcept {
    using Tick = std::chrono::duration<std::int64_t, std::ratio<1, 10'000>>;
    const auto age = std::chrono::duration_cast<Tick>(std::chrono::system_clock::now() - time);
    const auto now = static_cast<std::int64_t>(::dlt_uptime());
    return static_cast<std::uint32_t>(std::clamp<std::int64_t>(now - age.count(), 0, now));
  }

  DltContextIds ids_;
  std::unordered_map<const Logger*, DltContext> contexts_;  // nodes stay where they are, as libdlt expects of a context
  std::string escaped_;
  bool closed_ = false;
};

}  // namespace

std::unique_ptr<Sink> MakeDltSink(const std::string& applicationId, const std::string& description) {
  return std::make_unique<DltSink>(applicationId, description);
}

}  // namespace ara::log::impl
