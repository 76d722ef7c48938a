#include "zuva/server_element.h"

#include <algorithm>

#include "ara/rest/exceptions.h"
#include "zuva/server_resource.h"

namespace zuva {

void ServerElement::OnPost(const Request& request, ServerReply& reply, const ara::rest::Matches&) {
  const auto callback = GetPreUpdateCallback();
  if (!callback) return reply.SendNotAllowed(AllowedMethods());
  if (!request.body) return;
  // Whoever hands in writes with preconditions lets one of them at a time in, so that the tag holds until the update is over.
  if (request.preconditions.AreGiven()) {
    const auto etag = MakeRendered(0, ToOGM())->etag;
    if (!request.preconditions.MatchHolds(etag) || !request.preconditions.NoneMatchHolds(etag)) {
      return reply.SendError(std::string{kPreconditionFailed}, 412);
    }
  }
  const bool accepted = callback(shared_from_this(), *request.body, reply);
  if (accepted && !reply.IsAnswered()) OnUpdate(*request.body, reply);
}

void ServerElement::OnQuery(const Query& query, ServerReply& reply) {
  const auto& rendered = Render();
  if (!query.projected) return reply.SendBody(rendered);
  std::string body;
  query.WriteTo(body, *rendered->tree);
  reply.SendBody(MakeRendered(rendered->version, std::move(body)));
}

void ServerElement::OnUpdate(const ogm::Object& object, ServerReply& reply) {
  Update(object);
  const auto version = ContentVersion();
  reply.SendBody(MakeRendered(version, ToOGM()));
}

void ServerElement::OnDeleteFields(const ara::rest::Uri&, ServerReply& reply) {
  reply.SendNotAllowed(AllowedMethods());
}

std::string_view ServerElement::AllowedMethods() const {
  return HasPreUpdateCallback() ? kWritable : kReadOnly;
}

std::uint64_t ServerElement::ContentVersion() const noexcept {
  auto sum = BaseXObject::ContentVersion();
  for (const auto& [property, object] : embedded_) sum += object->ContentVersion();
  return sum;
}

const std::shared_ptr<const Rendered>& ServerElement::Render() {
  const auto version = ContentVersion();  // before the text: one that is newer than its label is made again, never served stale
  if (!rendered_ || rendered_->version != version) rendered_ = MakeRendered(version, ToOGM());
  return rendered_;
}

void ServerElement::KeepEmbedded(std::string property, std::shared_ptr<ServerElement> object) {
  if (!object) throw ara::rest::InvalidArgumentException{"ptr is null"};
  const auto found = std::find_if(embedded_.begin(), embedded_.end(), [&](const Embedded& embedded) { return embedded.first == property; });
  if (found == embedded_.end()) {
    embedded_.emplace_back(std::move(property), std::move(object));
  } else {
    found->second = std::move(object);
  }
}

void ServerElement::PublishChanged() noexcept {
  const auto resource = resource_.lock();
  const auto self = weak_from_this().lock();
  if (resource && self) resource->TellChanged(std::static_pointer_cast<ServerElement>(self));
}

}  // namespace zuva
