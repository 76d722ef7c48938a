#pragma once

#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "zuva/rendered.h"

namespace zuva {

/// The answer of one request, filled by whoever handles it and sent by the serving side afterwards. The first answer counts; later
/// ones are logged and ignored. Belongs to one thread at a time.
class ServerReply {
 public:
  /// An answer that is no document.
  struct Answer {
    unsigned short code = 0;      ///< HTTP status
    std::string text = {};        ///< told to the client as the detail
    bool internal = false;        ///< made by `SendInternalError`
    std::string_view allow = {};  ///< methods offered at this path, with 405 only; a constant
  };

  ServerReply() = default;
  ServerReply(const ServerReply&) = delete;
  ServerReply& operator=(const ServerReply&) = delete;

  /// Answers with a status and a text. The status need not be an error's: 202 goes this way too.
  void SendError(std::string text, unsigned short code);
  /// 500 "Internal Server Error".
  void SendInternalError();
  /// 405 with the methods that the path offers, a text with static life time.
  void SendNotAllowed(std::string_view allow);
  /// 200 with a document.
  void SendBody(std::shared_ptr<const Rendered> body);

  bool IsAnswered() const noexcept { return body_ || answer_; }
  const std::optional<Answer>& GetAnswer() const noexcept { return answer_; }
  /// Null unless the answer is a document.
  const std::shared_ptr<const Rendered>& GetBody() const noexcept { return body_; }

 private:
  bool IsFirst(unsigned code);
  void Answered(Answer answer);

  std::optional<Answer> answer_;
  std::shared_ptr<const Rendered> body_;
};

}  // namespace zuva
