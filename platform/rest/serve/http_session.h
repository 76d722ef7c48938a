#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include <boost/asio/buffer.hpp>

#include "serve/client_stream.h"
#include "serve/connection.h"
#include "serve/http_handler.h"
#include "serve/request_reader.h"
#include "serve/response.h"

namespace zuva::serve {

struct Hub;

/// A connection that speaks HTTP/1.1: reads a request, answers it, and only then looks at the next. I/O thread only.
///
/// Where the socket takes an answer at once nothing is queued and nothing copied: head, date line and body go out as they are.
class HttpSession final : public Connection, public std::enable_shared_from_this<HttpSession> {
 public:
  HttpSession(Hub& hub, ClientStream stream);

  void Start();
  void Sweep(Clock::time_point now) override;
  void Stop() override;
  void Abort() noexcept override;
  bool AwaitsAnswer() const override { return state_ == State::kHandling; }
  std::optional<Clock::time_point> IdleSince() const override;

 private:
  /// What the session waits for, since `since_`.
  enum class State : std::uint8_t {
    kShakingHands,  ///< TLS
    kIdle,          ///< the first byte of a request
    kReading,       ///< the rest of it
    kHandling,      ///< a request thread
    kWriting,       ///< the client to take an answer
    kDraining,      ///< the client to close, after the last answer
    kEnded
  };
  /// Whether the next request may be looked at, or something goes on that will call back.
  enum class Progress : std::uint8_t { kNext, kLater };
  using Buffers = std::array<boost::asio::const_buffer, 4>;

  /// The handler of an operation after which the session goes on with this step, unless it has ended or the operation failed.
  template <class Step>
  auto Then(Step step) {
    return Continuation{shared_from_this(), [step](HttpSession& self, const boost::system::error_code& error, std::size_t = 0) {
                          if (self.state_ == State::kEnded) return;
                          if (error) return self.Abort();
                          step(self);
                        }};
  }
  void Enter(State state);
  void ShakeHands();
  void Read();
  void OnRead(const boost::system::error_code& error, std::size_t bytes);
  void Proceed();
  bool MakeRoom();
  Progress Handle();
  Progress HandleHead();
  void Refuse(ReadState fault);
  Progress HandleWrite(Verdict verdict);
  void OnWritten(const ServerReply* reply);
  void Upgrade(Rights rights);

  Progress Fail() {
    Abort();
    return Progress::kLater;
  }
  Progress Send(Response response);
  void SendLast(Response response);
  void SendContinue();
  void ReadMore();
  Progress SendRest(std::size_t sent, const std::string& date);
  Progress Write(const Buffers& buffers);
  Progress AfterSend();
  Progress NextRequest();
  void AddFields();
  Buffers ToSend(const std::string& date) const;
  void Drain();
  void EndSending();

  Hub& hub_;
  ClientStream stream_;
  const boost::asio::ip::address local_;
  RequestReader reader_;
  State state_ = State::kIdle;
  Clock::time_point since_;
  bool reading_ = false;     // a read is under way
  bool continuing_ = false;  // the line that asks for the body is under way
  bool last_ = false;        // no request is taken after the present answer
  bool dropping_ = false;    // the request is answered before its body has come

  std::vector<char> input_;  // of which [begin_, end_) is still to be taken
  std::size_t begin_ = 0;
  std::size_t end_ = 0;

  Response response_;  // the answer being sent, and the lines that its head lacks
  std::string fields_;
  DocumentPieces pieces_;  // of the answer's body, if that is a file
  std::string date_;       // a copy, for an answer that does not go out at once
  std::string knownHost_;  // a Host that has passed
};

}  // namespace zuva::serve
