#include "zuva/server_reply.h"

#include <utility>

#include "zuva/logger.h"

namespace zuva {

void ServerReply::SendError(std::string text, unsigned short code) {
  Answered({.code = code, .text = std::move(text)});
}

void ServerReply::SendInternalError() {
  Answered({.code = 500, .text = "Internal Server Error", .internal = true});
}

void ServerReply::SendNotAllowed(std::string_view allow) {
  Answered({.code = 405, .text = "Method Not Allowed", .allow = allow});
}

void ServerReply::SendBody(std::shared_ptr<const Rendered> body) {
  if (IsFirst(200)) body_ = std::move(body);
}

bool ServerReply::IsFirst(unsigned code) {
  if (!IsAnswered()) return true;
  GetLogger().LogWarn() << "A request was answered already; the answer " << code << " is ignored";
  return false;
}

void ServerReply::Answered(Answer answer) {
  if (IsFirst(answer.code)) answer_ = std::move(answer);
}

}  // namespace zuva
