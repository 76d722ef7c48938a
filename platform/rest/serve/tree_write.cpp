#include "serve/tree_write.h"

#include <exception>
#include <utility>

#include "ara/rest/serialize/json_serializer.h"
#include "zuva/logger.h"

namespace zuva::serve {

TreeWrite::TreeWrite(Server::Destination destination, std::string path, std::string text, const Preconditions& preconditions, Wanted wanted,
                     Done done)
    : path_{std::move(path)},
      destination_{std::move(destination)},
      text_{std::move(text)},
      ifMatch_{preconditions.ifMatch},
      ifNoneMatch_{preconditions.ifNoneMatch},
      wanted_{std::move(wanted)},
      done_{std::move(done)} {
  if (const auto matches = ara::rest::Matches::Split(path_)) destination_.matches = *matches;  // views into the path of its own
}

TreeWrite::TreeWrite(Server::Destination destination, std::string path, ara::rest::Pointer<ogm::Object> document, const ogm::Object& value,
                     Wanted wanted, Done done)
    : TreeWrite{std::move(destination), std::move(path), std::string{}, Preconditions{}, std::move(wanted), std::move(done)} {
  document_ = std::move(document);
  value_ = &value;
}

void TreeWrite::Run() noexcept {
  try {
    Write();
  } catch (const std::exception& e) {  // want of memory; what callbacks throw is answered further down. Unanswered it counts as a 500
    GetLogger().LogError() << "A write to " << path_ << " failed: " << e;
  }
}

void TreeWrite::Write() {
  if (!value_) {
    auto parsed = ara::rest::serialize::ParseObject(text_);
    if (!parsed) return reply_.SendError(parsed.error().message(), 400);
    document_ = std::move(*parsed);
    value_ = document_.get();
  }
  Request request;
  request.method = Method::Post;
  request.path = path_;
  request.body = value_;
  request.preconditions = {ifMatch_, ifNoneMatch_};
  Server::Dispatch(destination_, request, reply_);
}

void TreeWrite::Finish() noexcept {
  Tell(&reply_);
}

void TreeWrite::Refuse() noexcept {
  Tell(nullptr);
}

void TreeWrite::Tell(const ServerReply* reply) noexcept {
  const auto done = std::exchange(done_, nullptr);  // with it goes what it keeps alive, here on the I/O thread
  try {
    done(reply);
  } catch (const std::exception& e) {
    GetLogger().LogError() << "The answer to a write to " << path_ << " could not be made: " << e;
  }
}

bool TakesPost(const Server::Destination& destination) {
  return destination && destination.endpoint->AllowedMethods().find("POST") != std::string_view::npos;
}

}  // namespace zuva::serve
