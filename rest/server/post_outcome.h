#pragma once

#include <cstdint>
#include <string_view>

#include "ara/log/logger.h"
#include "rest/answers.h"
#include "zuva/server_reply.h"

namespace trov::zuvaServer {

/// How a POST handler ended.
enum PostStatus : std::uint8_t {
  POST_SUCCESS = 0,         // the vehicle took the value
  POST_INVALID = 1,         // the application's checks refused the value; nothing was sent to the vehicle
  POST_INTERNAL_ERROR = 2,  // the set on the vehicle's side failed
};

/// What an answer to a client is made of.
struct PostAnswer {
  enum class Kind : std::uint8_t { none, error, internalError };  // none: the framework answers

  Kind kind = Kind::none;
  const char* text = "";
  unsigned short code = 0;
};

inline constexpr PostAnswer kFrameworkAnswers{};
inline constexpr PostAnswer kInternalError{.kind = PostAnswer::Kind::internalError};
inline constexpr PostAnswer kNotInRange{.kind = PostAnswer::Kind::error, .text = zuva::server::kValueNotAllowed, .code = 400};

void Send(const PostAnswer& answer, zuva::ServerReply& reply);

/// What follows from one status: a log line, an answer, and whether the framework goes on with the update.
struct PostOutcome {
  std::string_view line;
  PostAnswer answer = kFrameworkAnswers;
  bool accepted = false;
};

/// The outcomes of one kind of object. `other` is for a status that no handler gives.
struct PostRow {
  PostOutcome success, invalid, failed, other;
  bool answersBeforeLog = false;
};

/// Logs and answers what the row says for the status; true lets the framework go on.
bool Conclude(PostStatus status, const PostRow& row, const ara::log::Logger& logger, zuva::ServerReply& reply);

}  // namespace trov::zuvaServer
