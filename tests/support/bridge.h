#pragma once

#include "tests/support/http_client.h"
#include "tests/support/log_file.h"
#include "tests/support/notify_socket.h"
#include "tests/support/process.h"
#include "tests/support/temp_root.h"
#include "tests/support/ws_client.h"

#include <csignal>
#include <cstddef>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

namespace test_support {

/// The real program as a child process, with a staging root, a service manager and a log of its own. For one thread.
class Bridge {
 public:
  explicit Bridge(const TempRoot& root);

  /// Starts the program, or starts it again after its end; its environment may be changed with `environment`.
  void Start(const std::map<std::string, std::optional<std::string>>& environment = {});
  /// Waits for the HTTP port and gives it. Throws std::runtime_error with the end of the log if the program does not listen in time.
  std::uint16_t Port();
  /// Clients of the running program.
  HttpClient Http() { return HttpClient{"127.0.0.1", Port()}; }
  WsClient Ws(std::string_view path = "/", const Headers& headers = {}) { return WsClient{"127.0.0.1", Port(), path, headers}; }

  bool IsStarted() const { return process_ != nullptr; }
  Process& Program() { return *process_; }
  LogFile& Log() { return log_; }
  const NotifySocket& Manager() const { return manager_; }
  std::string StandardOutput() const;
  std::string StandardError() const;

  /// Sends the signal and waits for the end; nothing if it does not end in time.
  std::optional<ExitStatus> Stop(int signal = SIGTERM);

 private:
  const TempRoot& root_;
  NotifySocket manager_;
  LogFile log_;
  std::unique_ptr<Process> process_;
  std::size_t listened_ = 0;  // lines of former starts that tell a port
  std::uint16_t port_ = 0;
};

}  // namespace test_support
