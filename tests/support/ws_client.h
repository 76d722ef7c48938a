#pragma once

#include "tests/support/http_client.h"
#include "tests/support/wait_for.h"

#include <functional>
#include <optional>

namespace test_support {

/// A WebSocket client with a synchronous face. Messages that come while an answer is awaited are kept for Receive and WaitForEvent.
/// Failures and passed deadlines throw std::runtime_error, but where an optional says so. For one thread.
class WsClient {
 public:
  /// Connects and upgrades. A server that refuses makes it throw; the text holds the status.
  WsClient(std::string address, std::uint16_t port, std::string_view path = "/", const Headers& headers = {});
  ~WsClient();
  WsClient(WsClient&&) noexcept;
  WsClient& operator=(WsClient&&) noexcept;

  void Send(const nlohmann::json& message) { SendText(message.dump()); }
  void SendText(std::string_view text);
  void SendBinary(std::string_view bytes);
  void Ping();

  /// The next message; nothing if none comes in time or the server has closed.
  std::optional<nlohmann::json> Receive(std::chrono::milliseconds deadline = kPatience);
  /// Sends with a requestId of its own, unless there is one, and gives the answer to it.
  nlohmann::json Ask(nlohmann::json message);
  /// Takes messages up to the first that `matches`; those before it are dropped.
  std::optional<nlohmann::json> WaitForEvent(const std::function<bool(const nlohmann::json&)>& matches,
                                             std::chrono::milliseconds deadline = kPatience);
  /// Subscribes, and gives the snapshot that comes first.
  nlohmann::json Subscribe(std::string_view path);

  /// False once the end of the connection has been read.
  bool IsOpen() const;
  /// Reads on until the server has closed, and gives its close code (1006 for an end without one); nothing if it does not close.
  std::optional<unsigned> WaitForClose(std::chrono::milliseconds deadline = kPatience);
  void Close();

 private:
  struct Connection;
  std::unique_ptr<Connection> connection_;
};

}  // namespace test_support
