#include "serve/websocket.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <cstdint>
#include <exception>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

#include <openssl/evp.h>
#include <openssl/sha.h>

#include <boost/asio/post.hpp>
#include <boost/asio/write.hpp>
#include <boost/beast/core/flat_buffer.hpp>
#include <boost/beast/http/empty_body.hpp>
#include <boost/beast/http/message.hpp>
#include <boost/beast/websocket.hpp>

#include "serve/conversation.h"
#include "serve/hub.h"
#include "zuva/logger.h"

namespace zuva::serve {
namespace {

namespace asio = boost::asio;
namespace beast = boost::beast;
namespace http = boost::beast::http;
namespace websocket = boost::beast::websocket;

/// How long a client may take to answer a close.
constexpr std::chrono::seconds kLongestClose{10};
/// What may come in one go for a client that takes it by the next sweep, in multiples of the limit.
constexpr std::size_t kBurst = 8;
/// What the system keeps for a client. By itself it would grow to megabytes and hide how far the client is behind.
constexpr int kSendBuffer = 256 * 1024;

/// What the client's key is answered with (RFC 6455 section 4.2.2).
std::string AcceptOf(std::string_view key) {
  const auto text = std::string{key} + "258EAFA5-E914-47DA-95CA-C5AB0DC85B11";
  std::array<unsigned char, SHA_DIGEST_LENGTH> digest;
  SHA1(reinterpret_cast<const unsigned char*>(text.data()), text.size(), digest.data());
  std::array<unsigned char, 2 * SHA_DIGEST_LENGTH> encoded;
  const auto size = EVP_EncodeBlock(encoded.data(), digest.data(), SHA_DIGEST_LENGTH);
  return {reinterpret_cast<const char*>(encoded.data()), static_cast<std::size_t>(size)};
}

std::string AnswerTo(const HttpRequest& request) {
  auto answer = "HTTP/1.1 101 Switching Protocols\r\nConnection: Upgrade\r\nUpgrade: websocket\r\nSec-WebSocket-Accept: " +
                AcceptOf(request.webSocketKey) + "\r\n";
  // A page that shows its token as a subprotocol wants to see that one chosen.
  const auto chosen = Tokens::SubprotocolOf(request.webSocketProtocols);
  if (!chosen.empty()) answer.append("Sec-WebSocket-Protocol: ").append(chosen).append("\r\n");
  return answer.append("\r\n");
}

/// A WebSocket: reads a message only after the one before is answered and when the client has taken most of its answers, and writes what
/// the outbox holds as the client takes it.
class WebSocketSession final : public Connection, public Conversation::Socket, public std::enable_shared_from_this<WebSocketSession> {
 public:
  WebSocketSession(Hub& hub, ClientStream stream, Rights rights)
      : hub_{hub}, stream_{std::move(stream)}, conversation_{hub, *this, rights} {
    stream_.read_message_max(hub.config.limits.bodyBytes);
    stream_.auto_fragment(false);
    stream_.text(true);
    beast::error_code ignored;  // a socket that is broken already says so at the first read
    Tcp().set_option(asio::socket_base::send_buffer_size{kSendBuffer}, ignored);
    stream_.control_callback([this](websocket::frame_type, beast::string_view) { Hear(); });
  }

  void Start(const HttpRequest& request);
  void Sweep(Clock::time_point now) override;
  void Stop() override { Close(websocket::close_code::going_away); }
  void Abort() noexcept override;
  bool AwaitsAnswer() const override { return answering_; }

  Outbox& GetOutbox() override { return outbox_; }
  void Flush() override;
  void OnLost() override { CloseSlow(); }
  std::shared_ptr<Conversation::Socket> Keep() override { return shared_from_this(); }
  bool HasLeft() override { return state_ == State::kEnded || serve::HasLeft(Tcp()); }
  void OnAnswered() override;

 private:
  enum class State : std::uint8_t { kAccepting, kOpen, kClosing, kEnded };

  ClientStream::Tcp& Tcp() { return stream_.next_layer().Socket(); }
  template <class Step>
  auto Then(Step step) {
    return Continuation{shared_from_this(), std::move(step)};
  }
  void Accept();
  void Send();
  void Hear();
  void ReadIfRoom();
  void Read();
  void OnRead(const beast::error_code& error);
  void OnWritten(const beast::error_code& error);
  void Close(websocket::close_code code);
  void SetCloseDeadline();
  void CloseSlow();
  void SendClose();

  Hub& hub_;
  websocket::stream<ClientStream> stream_;
  beast::flat_buffer input_;
  Outbox outbox_;
  Conversation conversation_;
  State state_ = State::kAccepting;
  bool answering_ = false;  // an answer is outstanding, and no message is read
  bool reading_ = false;
  Clock::time_point heard_ = Clock::now();
  bool pinged_ = false;   // since then
  bool pinging_ = false;  // a ping waits for the socket, which takes one only

  std::string answer_;                              // to the upgrade
  std::optional<Frame> frame_;                      // being written
  bool wasBehind_ = false;                          // at the sweep before, more than the limit waited
  std::optional<websocket::close_code> closeCode_;  // to be sent behind what the outbox holds
  Clock::time_point closeDeadline_;
  bool closeSent_ = false;
};

void WebSocketSession::Start(const HttpRequest& request) {
  answer_ = AnswerTo(request);
  asio::async_write(stream_.next_layer(), asio::buffer(answer_),
                    Then([](WebSocketSession& self, const beast::error_code& error, std::size_t) {
                      if (self.state_ == State::kEnded) return;
                      if (error) return self.Abort();
                      self.Accept();
                    }));
}

/// Lets Beast answer an upgrade that has been answered: its own answer would name the library.
void WebSocketSession::Accept() {
  http::request<http::empty_body> upgrade{http::verb::get, "/", 11};
  upgrade.set(http::field::host, "localhost");
  upgrade.set(http::field::connection, "Upgrade");
  upgrade.set(http::field::upgrade, "websocket");
  upgrade.set(http::field::sec_websocket_key, "");
  upgrade.set(http::field::sec_websocket_version, "13");
  stream_.next_layer().DropWrites(true);
  stream_.async_accept(upgrade, Then([](WebSocketSession& self, const beast::error_code& error) {
                         if (self.state_ == State::kEnded) return;
                         if (error) return self.Abort();
                         self.stream_.next_layer().DropWrites(false);
                         self.answer_ = {};
                         self.state_ = self.closeCode_ ? State::kClosing : State::kOpen;
                         self.Hear();
                         self.ReadIfRoom();
                         self.Flush();
                       }));
}

void WebSocketSession::Sweep(Clock::time_point now) {
  const auto& limits = hub_.config.limits;
  const std::chrono::seconds idle{limits.idleSeconds};
  switch (state_) {
    case State::kAccepting:
      if (now - heard_ > std::chrono::seconds{limits.requestSeconds}) Abort();
      return;
    case State::kClosing:
      if (!answering_ && now > closeDeadline_) Abort();
      return;
    case State::kOpen:
      break;
    case State::kEnded:
      return;
  }
  const bool isBehind = outbox_.Bytes() > limits.pendingBytesPerClient;
  if (std::exchange(wasBehind_, isBehind) && isBehind) return CloseSlow();
  if (answering_) return;  // what the client sends is not read meanwhile
  if (now - heard_ > idle) return Abort();
  if (now - heard_ > idle / 2 && !pinging_ && !std::exchange(pinged_, true)) {
    pinging_ = true;
    // A failure shows at the next read.
    stream_.async_ping({}, Then([](WebSocketSession& self, const beast::error_code&) { self.pinging_ = false; }));
  }
}

void WebSocketSession::Abort() noexcept {
  if (std::exchange(state_, State::kEnded) == State::kEnded) return;
  conversation_.EndSubscriptions();
  outbox_.Clear();
  beast::error_code ignored;  // there is nothing left to do for a socket that does not close
  Tcp().close(ignored);
  hub_.connections.Remove(this);
}

void WebSocketSession::Hear() {
  heard_ = Clock::now();
  pinged_ = false;
}

void WebSocketSession::ReadIfRoom() {
  if (reading_ || answering_ || state_ == State::kEnded) return;
  if (outbox_.Bytes() > hub_.config.limits.pendingBytesPerClient / 2) return;
  Read();
}

/// A piece of a message. Beast's close reads what still comes by itself, and a read of a whole message would go on beside it.
void WebSocketSession::Read() {
  if (closeSent_) return;
  reading_ = true;
  stream_.async_read_some(input_, 0, Then([](WebSocketSession& self, const beast::error_code& error, std::size_t) { self.OnRead(error); }));
}

void WebSocketSession::OnRead(const beast::error_code& error) {
  reading_ = false;
  if (state_ == State::kEnded) return;
  if (error) {
    // Where the client broke the protocol Beast has told it why; otherwise it has closed or is gone.
    if (!closeSent_) Abort();
    return;
  }
  if (!stream_.is_message_done()) return Read();
  Hear();
  if (state_ == State::kOpen && !stream_.got_text()) Close(websocket::close_code::unknown_data);
  if (state_ == State::kOpen) {
    const auto bytes = input_.cdata();
    answering_ = !conversation_.Handle({static_cast<const char*>(bytes.data()), bytes.size()});
  }
  input_.consume(input_.size());
  Flush();
  ReadIfRoom();
}

void WebSocketSession::OnAnswered() {
  answering_ = false;
  if (state_ == State::kEnded) return;
  Hear();
  if (closeCode_) SetCloseDeadline();
  Flush();
  ReadIfRoom();
}

void WebSocketSession::Flush() {
  const auto self = shared_from_this();  // kept by nobody else, perhaps, once it has ended
  try {
    Send();
  } catch (const std::exception& e) {  // no memory: its frames would be missing, but those of others need not
    GetLogger().LogError() << "A WebSocket was ended: " << e;
    Abort();
  }
}

void WebSocketSession::Send() {
  if (state_ == State::kEnded) return;
  if (outbox_.Bytes() / kBurst > hub_.config.limits.pendingBytesPerClient) {
    // Later, since whoever fills the outbox is not to lose the subscription under its hands.
    asio::post(hub_.io, Then([](WebSocketSession& self) { self.CloseSlow(); }));
    return;
  }
  if (frame_ || state_ == State::kAccepting || closeSent_) return;
  frame_ = outbox_.Pop(SubscriptionIndex::Render);
  if (!frame_) {
    if (closeCode_ && !answering_) SendClose();
    return;
  }
  const auto piece = [](const std::shared_ptr<const std::string>& text) { return text ? asio::buffer(*text) : asio::const_buffer{}; };
  const std::array<asio::const_buffer, 2> pieces{piece(frame_->prefix), piece(frame_->tail)};
  stream_.async_write(pieces, Then([](WebSocketSession& self, const beast::error_code& error, std::size_t) { self.OnWritten(error); }));
}

void WebSocketSession::OnWritten(const beast::error_code& error) {
  frame_.reset();
  if (!reading_) Hear();  // a client that takes its answers lives, though its pongs are not read meanwhile
  if (state_ == State::kEnded) return;
  if (error) {
    if (!closeSent_) Abort();
    return;
  }
  Flush();
  ReadIfRoom();
}

/// Says goodbye behind all answers; an answer that is outstanding is waited for.
void WebSocketSession::Close(websocket::close_code code) {
  if (state_ == State::kEnded || closeCode_) return;
  if (state_ == State::kOpen) state_ = State::kClosing;
  closeCode_ = code;
  SetCloseDeadline();
  conversation_.EndSubscriptions();
  Flush();
}

void WebSocketSession::SetCloseDeadline() {
  closeDeadline_ = Clock::now() + std::min<std::chrono::seconds>(kLongestClose, std::chrono::seconds{hub_.config.limits.idleSeconds});
}

void WebSocketSession::CloseSlow() {
  outbox_.Clear();
  Close(websocket::close_code::try_again_later);
}

void WebSocketSession::SendClose() {
  closeSent_ = true;
  stream_.async_close(*closeCode_, Then([](WebSocketSession& self, const beast::error_code&) { self.Abort(); }));
}

}  // namespace

void AcceptWebSocket(Hub& hub, ClientStream stream, const HttpRequest& request, Rights rights) {
  const auto session = std::make_shared<WebSocketSession>(hub, std::move(stream), rights);
  hub.connections.Add(session);
  OrAbort(*session, [&] { session->Start(request); });
}

}  // namespace zuva::serve
