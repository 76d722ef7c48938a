#include "rest/server/post_outcome.h"

#include "ara/log/log_stream.h"

namespace trov::zuvaServer {
namespace {

const PostOutcome& OutcomeOf(PostStatus status, const PostRow& row) {
  switch (status) {
    case POST_SUCCESS:
      return row.success;
    case POST_INVALID:
      return row.invalid;
    case POST_INTERNAL_ERROR:
      return row.failed;
  }
  return row.other;
}

}  // namespace

void Send(const PostAnswer& answer, zuva::ServerReply& reply) {
  switch (answer.kind) {
    case PostAnswer::Kind::none:
      return;
    case PostAnswer::Kind::error:
      return reply.SendError(answer.text, answer.code);
    case PostAnswer::Kind::internalError:
      return reply.SendInternalError();
  }
}

bool Conclude(PostStatus status, const PostRow& row, const ara::log::Logger& logger, zuva::ServerReply& reply) {
  const PostOutcome& outcome = OutcomeOf(status, row);
  if (row.answersBeforeLog) Send(outcome.answer, reply);
  logger.LogInfo() << outcome.line;
  if (!row.answersBeforeLog) Send(outcome.answer, reply);
  return outcome.accepted;
}

}  // namespace trov::zuvaServer
