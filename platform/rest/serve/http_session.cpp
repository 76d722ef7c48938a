#include "serve/http_session.h"

#include <algorithm>
#include <chrono>
#include <cstring>
#include <utility>

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
  stream_.AsyncHandshake(Then([](HttpSession& self) {
    self.Enter(State::kIdle);
    self.Read();
  }));
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
      if (waited <= std::chrono::seconds{limits.requestSeconds}) break;
      if (continuing_ || dropping_) return Abort();
      SendLast(ProblemResponse(408, "The request took too long"));
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

void HttpSession::Abort() noexcept {
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
  Continuation handler{shared_from_this(),
                       [](HttpSession& self, const boost::system::error_code& error, std::size_t bytes) { self.OnRead(error, bytes); }};
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
        if (HandleHead() == Progress::kLater) return;
        continue;
      case ReadState::kNeedsMore:
        return ReadMore();
      case ReadState::kMalformed:
      case ReadState::kBadVersion:
      case ReadState::kHeadTooLarge:
      case ReadState::kBodyTooLarge:
        return Refuse(progress);
    }
  }
}

/// Answers a request that cannot be read on, as the last one, unless it is answered already.
void HttpSession::Refuse(ReadState fault) {
  last_ = true;
  if (dropping_) return Drain();
  switch (fault) {
    case ReadState::kBadVersion:
      return SendLast(ProblemResponse(505, "This server speaks HTTP/1.1"));
    case ReadState::kHeadTooLarge:
      return SendLast(ProblemResponse(431, "The head of the request is too large"));
    case ReadState::kBodyTooLarge: {
      constexpr unsigned kFirstError = 400;
      auto verdict = Judge(hub_, reader_.Request(), local_, knownHost_);  // what the head alone decides counts first
      const bool isRefused = verdict.kind == Verdict::Kind::kAnswer && verdict.response.code >= kFirstError;
      return SendLast(isRefused ? std::move(verdict.response) : ProblemResponse(413, "The body of the request is too large"));
    }
    default:
      return SendLast(ProblemResponse(400, "Malformed request"));
  }
}

void HttpSession::ReadMore() {
  if (reader_.HasBegun() && state_ == State::kIdle) Enter(State::kReading);
  if (!MakeRoom()) return Refuse(ReadState::kMalformed);
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

/// Answers a request whose body is still to come if the head alone decides. Who waits to be asked for the body need not send it any more,
/// and so cannot say where the next request begins.
HttpSession::Progress HttpSession::HandleHead() {
  const bool waits = reader_.Request().expectsContinue;
  auto verdict = Judge(hub_, reader_.Request(), local_, knownHost_);
  if (verdict.kind == Verdict::Kind::kAnswer) {
    dropping_ = true;
    last_ = last_ || waits;
    return Send(std::move(verdict.response));
  }
  if (!waits) return Progress::kNext;
  SendContinue();
  return Progress::kLater;
}

HttpSession::Progress HttpSession::Handle() {
  if (std::exchange(dropping_, false)) return NextRequest();
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
  const auto preconditions = reader_.Request().GetPreconditions();
  const void* const resource = verdict.destination.resource.get();
  const void* const turn = preconditions.AreGiven() ? verdict.destination.element.get() : nullptr;
  auto write = std::make_shared<TreeWrite>(
      std::move(verdict.destination), std::string{verdict.path}, reader_.TakeBody(), preconditions,
      [this] { return state_ == State::kHandling && !HasLeft(stream_.Socket()); },
      [self = shared_from_this()](const ServerReply* reply) { OrAbort(*self, [&] { self->OnWritten(reply); }); });
  Enter(State::kHandling);
  if (hub_.posts.Submit(resource, std::move(write), turn)) return Progress::kLater;
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

}  // namespace zuva::serve
