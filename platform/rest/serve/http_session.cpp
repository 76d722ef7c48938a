#include "serve/http_session.h"

#include <algorithm>
#include <chrono>
#include <cstring>
#include <utility>

#include <boost/asio/write.hpp>

#include "serve/hub.h"
#include "serve/tree_write.h"
#include "serve/websocket.h"

namespace zuva::serve {

namespace asio = boost::asio;

namespace {

constexpr std::size_t kFirstRoom = 4096;
constexpr std::chrono::seconds kLongestDrain{2};

asio::ip::address LocalAddress(const asio::ip::tcp::socket& socket) {
  boost::system::error_code error;
  return socket.local_endpoint(error).address();
}

}  // namespace

HttpSession::HttpSession(Hub& hub, ClientStream stream)
    : hub_{hub},
      stream_{std::move(stream)},
      local_{LocalAddress(stream_.Socket())},
      reader_{hub.config.limits.headerBytes, hub.config.limits.bodyBytes},
      input_(kFirstRoom) {
  boost::system::error_code ignored;  // a socket that is broken already says so at the first read
  stream_.Socket().non_blocking(true, ignored);
  stream_.Socket().set_option(asio::ip::tcp::no_delay{true}, ignored);
  Enter(stream_.IsSecure() ? State::kShakingHands : State::kIdle);
}

void HttpSession::Start() {
  if (stream_.IsSecure()) {
    ShakeHands();
  } else {
    Read();
  }
}

void HttpSession::ShakeHands() {
  stream_.AsyncHandshake([self = shared_from_this()](const boost::system::error_code& error) {
    if (self->state_ == State::kEnded) return;
    if (error) return self->Abort();
    self->Enter(State::kIdle);
    self->Read();
  });
}

void HttpSession::Enter(State state) {
  state_ = state;
  since_ = Clock::now();
}

void HttpSession::Sweep(Clock::time_point now) {
  const auto& limits = hub_.config.limits;
  const auto waited = now - since_;
  switch (state_) {
    case State::kIdle:
    case State::kWriting:
      if (waited > std::chrono::seconds{limits.idleSeconds}) Abort();
      break;
    case State::kShakingHands:
      if (waited > std::chrono::seconds{limits.requestSeconds}) Abort();
      break;
    case State::kReading:
      if (waited > std::chrono::seconds{limits.requestSeconds} && continuing_) return Abort();
      if (waited > std::chrono::seconds{limits.requestSeconds}) SendLast(ProblemResponse(408, "The request took too long"));
      break;
    case State::kDraining:
      if (waited > kLongestDrain) Abort();
      break;
    case State::kHandling:
    case State::kEnded:
      break;
  }
}

void HttpSession::Stop() {
  last_ = true;
  if (state_ == State::kShakingHands || state_ == State::kIdle || state_ == State::kReading) Abort();
}

void HttpSession::Abort() {
  if (state_ == State::kEnded) return;
  Enter(State::kEnded);
  boost::system::error_code ignored;  // there is nothing left to do for a socket that does not close
  stream_.Socket().close(ignored);
  hub_.connections.Remove(this);
}

std::optional<Clock::time_point> HttpSession::IdleSince() const {
  const bool isIdle = state_ == State::kIdle || state_ == State::kShakingHands;  // neither has anything under way for its client
  return isIdle ? std::optional{since_} : std::nullopt;
}

void HttpSession::Read() {
  reading_ = true;
  const auto room = asio::buffer(input_.data() + end_, input_.size() - end_);
  auto handler = [self = shared_from_this()](const boost::system::error_code& error, std::size_t bytes) { self->OnRead(error, bytes); };
  if (state_ == State::kDraining) {  // over what lies below TLS, which has ended
    stream_.Socket().async_read_some(room, std::move(handler));
  } else {
    stream_.async_read_some(room, std::move(handler));
  }
}

void HttpSession::OnRead(const boost::system::error_code& error, std::size_t bytes) {
  reading_ = false;
  if (state_ == State::kEnded) return;
  if (error) return Abort();
  if (state_ == State::kIdle || state_ == State::kReading) {
    end_ += bytes;
    Proceed();
  } else if (state_ == State::kDraining) {
    Read();  // over what came before; nobody looks at it
  }
}

void HttpSession::Proceed() {
  for (;;) {
    std::size_t taken = 0;
    const auto progress = reader_.Take({input_.data() + begin_, end_ - begin_}, taken);
    begin_ += taken;
    switch (progress) {
      case ReadState::kComplete:
        if (Handle() == Progress::kLater) return;
        continue;
      case ReadState::kHead:
        if (reader_.Request().expectsContinue) return SendContinue();
        return ReadMore();
      case ReadState::kNeedsMore:
        return ReadMore();
      case ReadState::kMalformed:
        return SendLast(ProblemResponse(400, "Malformed request"));
      case ReadState::kHeadTooLarge:
        return SendLast(ProblemResponse(431, "The head of the request is too large"));
      case ReadState::kBodyTooLarge:
        return SendLast(ProblemResponse(413, "The body of the request is too large"));
    }
  }
}

void HttpSession::ReadMore() {
  if (reader_.HasBegun() && state_ == State::kIdle) Enter(State::kReading);
  if (!MakeRoom()) return SendLast(ProblemResponse(400, "Malformed request"));
  Read();
}

/// What the parser has not taken must stay in one piece, so the room grows with the longest head. False if even that is not enough.
bool HttpSession::MakeRoom() {
  if (begin_ > 0) {
    std::memmove(input_.data(), input_.data() + begin_, end_ - begin_);
    end_ -= begin_;
    begin_ = 0;
  }
  if (end_ < input_.size()) return true;
  const auto most = std::max(kFirstRoom, hub_.config.limits.headerBytes + 1);
  if (input_.size() >= most) return false;
  input_.resize(std::min(most, 2 * input_.size()));
  return true;
}

HttpSession::Progress HttpSession::Handle() {
  auto verdict = Judge(hub_, reader_.Request(), local_, knownHost_);
  switch (verdict.kind) {
    case Verdict::Kind::kWrite:
      return HandleWrite(std::move(verdict));
    case Verdict::Kind::kUpgrade:
      if (begin_ != end_) {  // nothing may follow before the upgrade is answered
        SendLast(ProblemResponse(400, "Bytes behind the upgrade"));
      } else {
        Upgrade(verdict.rights);
      }
      return Progress::kLater;
    case Verdict::Kind::kAnswer:
      break;
  }
  return Send(std::move(verdict.response));
}

HttpSession::Progress HttpSession::HandleWrite(Verdict verdict) {
  const void* const resource = verdict.destination.resource.get();
  auto write = std::make_shared<TreeWrite>(
      std::move(verdict.destination), std::string{verdict.path}, reader_.TakeBody(),
      [this] { return state_ == State::kHandling && !HasLeft(stream_.Socket()); },
      [self = shared_from_this()](const ServerReply* reply) { self->OnWritten(reply); });
  Enter(State::kHandling);
  if (hub_.posts.Submit(resource, std::move(write))) return Progress::kLater;
  return Send(WriteResponse(nullptr));
}

void HttpSession::OnWritten(const ServerReply* reply) {
  if (state_ != State::kHandling) return;  // the connection has ended meanwhile
  if (Send(WriteResponse(reply)) == Progress::kNext) Proceed();
}

void HttpSession::Upgrade(Rights rights) {
  Enter(State::kEnded);
  const auto self = shared_from_this();  // kept by nobody else from here on
  hub_.connections.Remove(this);
  AcceptWebSocket(hub_, std::move(stream_), reader_.Request(), rights);
}

HttpSession::Progress HttpSession::Send(Response response) {
  response_ = std::move(response);
  last_ = last_ || !reader_.Request().keepAlive;
  if (!pieces_.Begin(reader_.Request().method == HttpMethod::kHead ? nullptr : response_.file)) return Fail();
  AddFields();
  const auto& date = hub_.date.Get();
  const auto buffers = ToSend(date);
  boost::system::error_code error;
  const auto sent = stream_.TryWrite(buffers, error);
  if (error && error != asio::error::would_block) return Fail();
  if (sent < asio::buffer_size(buffers)) return SendRest(sent, date);
  return AfterSend();
}

void HttpSession::SendLast(Response response) {
  last_ = true;
  Send(std::move(response));
}

void HttpSession::SendContinue() {
  constexpr std::string_view kLine = "HTTP/1.1 100 Continue\r\n\r\n";
  if (state_ == State::kIdle) Enter(State::kReading);
  continuing_ = true;
  asio::async_write(stream_, asio::buffer(kLine), [self = shared_from_this()](const boost::system::error_code& error, std::size_t) {
    self->continuing_ = false;
    if (self->state_ == State::kEnded) return;
    if (error) return self->Abort();
    self->ReadMore();
  });
}

HttpSession::Progress HttpSession::SendRest(std::size_t sent, const std::string& date) {
  date_ = date;
  auto rest = ToSend(date_);
  for (auto& buffer : rest) {
    const auto skipped = std::min(sent, buffer.size());
    buffer += skipped;
    sent -= skipped;
  }
  return Write(rest);
}

HttpSession::Progress HttpSession::Write(const Buffers& buffers) {
  Enter(State::kWriting);
  asio::async_write(stream_, buffers, [self = shared_from_this()](const boost::system::error_code& error, std::size_t) {
    if (self->state_ == State::kEnded) return;
    if (error) return self->Abort();
    if (self->AfterSend() == Progress::kNext) self->Proceed();
  });
  return Progress::kLater;
}

HttpSession::Progress HttpSession::AfterSend() {
  if (pieces_.HasMore()) return pieces_.Next() ? Write({asio::buffer(pieces_.Piece())}) : Fail();
  pieces_.Begin(nullptr);
  response_ = {};
  if (last_) {
    Drain();
    return Progress::kLater;
  }
  reader_.Next();
  Enter(State::kIdle);
  return Progress::kNext;
}

void HttpSession::AddFields() {
  fields_.clear();
  const auto& request = reader_.Request();
  if (last_) {
    fields_ += "Connection: close\r\n";
  } else if (request.version < 11) {
    fields_ += "Connection: keep-alive\r\n";
  }
  if (hub_.documents) fields_ += "Vary: Accept\r\n";
  if (!hub_.rules.HasListedOrigins()) return;
  fields_ += "Vary: Origin\r\n";
  if (hub_.rules.IsListed(request.origin)) fields_.append("Access-Control-Allow-Origin: ").append(request.origin).append("\r\n");
}

HttpSession::Buffers HttpSession::ToSend(const std::string& date) const {
  const bool headOnly = reader_.Request().method == HttpMethod::kHead;
  const auto head = response_.Head();
  const auto body = headOnly ? std::string_view{} : response_.file ? pieces_.Piece() : response_.Body();
  return {asio::buffer(head.data(), head.size()), asio::buffer(fields_), asio::buffer(date), asio::buffer(body.data(), body.size())};
}

/// Says that no more comes, and waits for the client to say the same: closing with its bytes unread would cut off the answer.
void HttpSession::Drain() {
  Enter(State::kDraining);
  if (!stream_.IsSecure() || reading_) return EndSending();                             // TLS, too, reads one thing at a time
  stream_.AsyncGoodbye([self = shared_from_this()](const boost::system::error_code&) {  // what comes behind it may be anything
    if (self->state_ != State::kEnded) self->EndSending();
  });
}

void HttpSession::EndSending() {
  boost::system::error_code error;
  stream_.Socket().shutdown(asio::ip::tcp::socket::shutdown_send, error);
  if (error) return Abort();
  begin_ = end_ = 0;
  if (!reading_) Read();
}

}  // namespace zuva::serve
