#include "tests/support/ws_client.h"

#include <boost/asio/io_context.hpp>
#include <boost/beast/core.hpp>
#include <boost/beast/websocket.hpp>

#include <deque>
#include <stdexcept>

namespace test_support {

namespace net = boost::asio;
namespace beast = boost::beast;
namespace websocket = beast::websocket;
using tcp = net::ip::tcp;
using Clock = std::chrono::steady_clock;

struct WsClient::Connection {
  // One read is always under way, so that pings are answered and a passed deadline loses nothing.
  void Read() {
    stream.async_read(buffer, [this](beast::error_code error, std::size_t) {
      if (error) {
        closed = true;
        return;
      }
      received.push_back(beast::buffers_to_string(buffer.data()));
      buffer.consume(buffer.size());
      Read();
    });
  }

  template <class Condition>
  bool RunUntil(Condition&& condition, Clock::time_point end) {
    context.restart();
    while (!condition() && Clock::now() < end && !context.stopped()) context.run_one_until(end);
    return condition();
  }

  template <class Start>
  void Do(const char* what, Start&& start) {
    std::optional<beast::error_code> result;
    start([&result](beast::error_code error, auto&&...) { result = error; });
    if (!RunUntil([&] { return result.has_value(); }, Clock::now() + kPatience)) {
      // The operation still points at the local result: end it before it goes out of scope.
      beast::get_lowest_layer(stream).close();
      RunUntil([&] { return result.has_value(); }, Clock::now() + kPatience);
      throw std::runtime_error(std::string{what} + ": no end in time");
    }
    if (*result) throw std::runtime_error(std::string{what} + ": " + result->message());
  }

  std::optional<nlohmann::json> Next(Clock::time_point end) {
    if (!RunUntil([this] { return !received.empty() || closed; }, end) || received.empty()) return {};
    auto message = nlohmann::json::parse(received.front(), nullptr, false);
    received.pop_front();
    return message;
  }

  net::io_context context;
  websocket::stream<beast::tcp_stream> stream{context};
  beast::flat_buffer buffer;
  std::deque<std::string> received;    // texts not yet looked at
  std::deque<nlohmann::json> skipped;  // messages that came before an awaited answer
  bool closed = false;
  unsigned nextRequest = 1;
};

WsClient::WsClient(std::string address, std::uint16_t port, std::string_view path, const Headers& headers)
    : connection_{std::make_unique<Connection>()} {
  auto& c = *connection_;
  const tcp::endpoint endpoint{net::ip::make_address(address), port};
  const auto host = (endpoint.address().is_v6() ? "[" + address + "]" : address) + ":" + std::to_string(port);
  c.Do("connect", [&](auto done) { beast::get_lowest_layer(c.stream).async_connect(endpoint, done); });
  c.stream.read_message_max(0);
  c.stream.set_option(websocket::stream_base::decorator([headers](websocket::request_type& request) {
    for (const auto& [name, value] : headers) request.set(name, value);
  }));
  websocket::response_type response;
  try {
    c.Do("upgrade", [&](auto done) { c.stream.async_handshake(response, host, std::string{path}, done); });
  } catch (const std::runtime_error& error) {
    throw std::runtime_error(std::string{error.what()} + ", status " + std::to_string(response.result_int()));
  }
  c.Read();
}

WsClient::~WsClient() = default;
WsClient::WsClient(WsClient&&) noexcept = default;
WsClient& WsClient::operator=(WsClient&&) noexcept = default;

void WsClient::SendText(std::string_view text) {
  connection_->stream.text(true);
  connection_->Do("send", [&](auto done) { connection_->stream.async_write(net::buffer(text.data(), text.size()), done); });
}

void WsClient::SendBinary(std::string_view bytes) {
  connection_->stream.binary(true);
  connection_->Do("send", [&](auto done) { connection_->stream.async_write(net::buffer(bytes.data(), bytes.size()), done); });
}

void WsClient::Ping() {
  connection_->Do("ping", [&](auto done) { connection_->stream.async_ping({}, done); });
}

std::optional<nlohmann::json> WsClient::Receive(std::chrono::milliseconds deadline) {
  auto& skipped = connection_->skipped;
  if (skipped.empty()) return connection_->Next(Clock::now() + deadline);
  auto message = std::move(skipped.front());
  skipped.pop_front();
  return message;
}

nlohmann::json WsClient::Ask(nlohmann::json message) {
  if (!message.contains("requestId")) message["requestId"] = "ask-" + std::to_string(connection_->nextRequest++);
  Send(message);
  const auto end = Clock::now() + kPatience;
  while (auto next = connection_->Next(end)) {
    if (next->value("requestId", nlohmann::json{}) == message["requestId"]) return std::move(*next);
    connection_->skipped.push_back(std::move(*next));
  }
  throw std::runtime_error("no answer to " + message.dump());
}

std::optional<nlohmann::json> WsClient::WaitForEvent(const std::function<bool(const nlohmann::json&)>& matches,
                                                     std::chrono::milliseconds deadline) {
  const auto end = Clock::now() + deadline;
  for (;;) {
    const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(end - Clock::now());
    auto message = Receive(std::max(left, std::chrono::milliseconds{0}));
    if (!message || matches(*message)) return message;
  }
}

nlohmann::json WsClient::Subscribe(std::string_view path) {
  const auto answer = Ask({{"action", "subscribe"}, {"path", path}});
  const auto id = answer.value("subscriptionId", "");
  if (id.empty()) throw std::runtime_error("no subscription: " + answer.dump());
  auto snapshot = WaitForEvent([&](const nlohmann::json& m) { return m.value("subscriptionId", "") == id && m.contains("event"); });
  if (!snapshot) throw std::runtime_error("no snapshot of " + std::string{path});
  return std::move(*snapshot);
}

bool WsClient::IsOpen() const {
  return !connection_->closed;
}

std::optional<unsigned> WsClient::WaitForClose(std::chrono::milliseconds deadline) {
  auto& c = *connection_;
  if (!c.RunUntil([&] { return c.closed; }, Clock::now() + deadline)) return {};
  const auto code = static_cast<unsigned>(c.stream.reason().code);
  return code ? code : unsigned{websocket::close_code::abnormal};
}

void WsClient::Close() {
  if (!connection_->closed)
    connection_->Do("close", [&](auto done) { connection_->stream.async_close(websocket::close_code::normal, done); });
}

}  // namespace test_support
