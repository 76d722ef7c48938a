#include "serve/conversation.h"

#include <utility>

#include "serve/hub.h"
#include "serve/response.h"
#include "serve/tree_write.h"

namespace zuva::serve {
namespace {

constexpr std::string_view kNotFound = "Not Found";
constexpr std::string_view kNotAllowed = "Method Not Allowed";
constexpr std::string_view kBadPath = "Malformed path";

}  // namespace

bool Conversation::Handle(std::string_view text) {
  Echo echo;
  std::string fault;
  auto message = ReadMessage(text, echo, fault);
  if (!message) {
    Answer(ErrorAnswer(echo, 400, fault));
    return true;
  }
  switch (message->action) {
    case Message::Action::kGet:
      Get(*message, echo);
      break;
    case Message::Action::kSet:
      return Set(std::move(*message), echo);
    case Message::Action::kSubscribe:
      Subscribe(*message, echo);
      break;
    case Message::Action::kUnsubscribe:
      Unsubscribe(*message, echo);
      break;
  }
  return true;
}

void Conversation::EndSubscriptions() {
  for (const auto& [id, subscription] : subscriptions_) {
    if (subscription) hub_.subscriptions.End(*subscription);  // none: subscribing failed, and the connection is about to end
  }
  subscriptions_.clear();
}

void Conversation::Get(const Message& message, const Echo& echo) {
  auto target = ParseTarget(message.path);
  if (!target) return Answer(ErrorAnswer(echo, 400, kBadPath));
  Request request;
  request.path = target->path;
  request.query = std::move(target->query);
  ServerReply reply;
  Server::Dispatch(hub_.tree.FindOnIo(request.path), request, reply);
  Answer(reply.GetBody() ? DataAnswer(echo, reply.GetBody()->body) : PlainAnswer(echo, *reply.GetAnswer()));
}

bool Conversation::Set(Message message, const Echo& echo) {
  const auto refuse = [&](unsigned code, std::string_view reason) {
    Answer(ErrorAnswer(echo, code, reason));
    return true;
  };
  if (rights_ != Rights::kWrite) return refuse(403, kReadOnly);
  const auto target = ParseTarget(message.path);
  if (!target) return refuse(400, kBadPath);
  auto destination = hub_.tree.FindOnIo(target->path);
  if (!destination) return refuse(404, kNotFound);
  if (!TakesPost(destination)) return refuse(405, kNotAllowed);
  const void* const resource = destination.resource.get();
  auto write = std::make_shared<TreeWrite>(
      std::move(destination), std::string{target->path}, std::move(message.document), *message.value, [this] { return !socket_.HasLeft(); },
      [this, keep = socket_.Keep(), echo](const ServerReply* reply) {
        OrAbort(*keep, [&] {
          Answer(WriteAnswer(echo, reply));
          keep->OnAnswered();
        });
      });
  if (!hub_.posts.Submit(resource, std::move(write))) return refuse(503, kBusy);
  return false;
}

void Conversation::Subscribe(const Message& message, const Echo& echo) {
  const auto refuse = [&](unsigned code, std::string_view reason) { Answer(ErrorAnswer(echo, code, reason)); };
  auto target = ParseTarget(message.path);
  if (!target) return refuse(400, kBadPath);
  const auto destination = hub_.tree.FindOnIo(target->path);
  if (!destination) return refuse(404, kNotFound);
  if (!destination.service) return refuse(405, kNotAllowed);
  const auto& query = target->query;
  if (query.identity || query.specification || query.projected) return refuse(400, "A subscription takes equality filters only");
  if (!query.filters.empty() && (!destination.resource || destination.element)) return refuse(400, "Only a resource takes filters");
  if (subscriptions_.size() >= hub_.config.limits.subscriptionsPerClient) return refuse(429, "Too many subscriptions");
  const auto id = std::to_string(++lastId_);
  Answer(SubscriptionAnswer(echo, id));
  auto& place = subscriptions_[id];  // first: one that is subscribed already can be kept
  place = hub_.subscriptions.Subscribe(socket_, id, destination, std::move(target->query), message.path);
}

void Conversation::Unsubscribe(const Message& message, const Echo& echo) {
  const auto found = subscriptions_.find(message.subscriptionId);
  if (found == subscriptions_.end()) return Answer(ErrorAnswer(echo, 404, "No such subscription"));
  hub_.subscriptions.End(*found->second);
  subscriptions_.erase(found);
  Answer(SubscriptionAnswer(echo, message.subscriptionId));
}

void Conversation::Answer(std::string text) {
  socket_.GetOutbox().Push(Frame{nullptr, std::make_shared<const std::string>(std::move(text))});
}

std::string Conversation::PlainAnswer(const Echo& echo, const ServerReply::Answer& answer) {
  if (!CanCarryText(answer.code)) return ErrorAnswer(echo, 500, StatusTitle(500));
  return answer.code < 400 ? StatusAnswer(echo, answer.code, answer.text) : ErrorAnswer(echo, answer.code, answer.text);
}

std::string Conversation::WriteAnswer(const Echo& echo, const ServerReply* reply) {
  if (!reply) return ErrorAnswer(echo, 503, kBusy);
  if (!reply->IsAnswered()) return ErrorAnswer(echo, 500, StatusTitle(500));
  return reply->GetBody() ? SetAnswer(echo, reply->GetBody()->body) : PlainAnswer(echo, *reply->GetAnswer());
}

}  // namespace zuva::serve
