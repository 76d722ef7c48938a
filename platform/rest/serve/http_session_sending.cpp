// How a session sends its answers, and says that no more come.
#include <algorithm>
#include <utility>

#include <boost/asio/write.hpp>

#include "serve/http_session.h"
#include "serve/hub.h"

namespace zuva::serve {

namespace asio = boost::asio;

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
  asio::async_write(stream_, asio::buffer(kLine), Then([](HttpSession& self) {
                      self.continuing_ = false;
                      self.ReadMore();
                    }));
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
  asio::async_write(stream_, buffers, Then([](HttpSession& self) {
                      if (self.AfterSend() == Progress::kNext) self.Proceed();
                    }));
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
  if (!dropping_) return NextRequest();
  Enter(State::kReading);
  return Progress::kNext;
}

HttpSession::Progress HttpSession::NextRequest() {
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
  if (!stream_.IsSecure() || reading_) return EndSending();  // TLS, too, reads one thing at a time
  // What comes behind it may be anything.
  stream_.AsyncGoodbye(Continuation{shared_from_this(), [](HttpSession& self, const boost::system::error_code&) {
                                      if (self.state_ != State::kEnded) self.EndSending();
                                    }});
}

void HttpSession::EndSending() {
  boost::system::error_code error;
  stream_.Socket().shutdown(asio::ip::tcp::socket::shutdown_send, error);
  if (error) return Abort();
  begin_ = end_ = 0;
  if (!reading_) Read();
}

}  // namespace zuva::serve
