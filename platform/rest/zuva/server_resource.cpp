#include "zuva/server_resource.h"

#include <utility>

#include "ara/rest/serialize/json_writer.h"
#include "zuva/find_below.h"

namespace zuva {

ServerResource::ServerResource(const ara::rest::Uuid& uuid, const ara::rest::Uri& uri, std::string name)
    : XObjectEndpoint{uuid, uri, std::move(name)} {
  SetDescription({});
}

void ServerResource::Add(const std::shared_ptr<ServerElement>& element) {
  if (!element) throw ara::rest::InvalidArgumentException{"ptr is null"};
  const auto sink = GetChangeSink();
  const auto self = Self();
  // The element is held from its rendering until it is in the list, so that no change falls between; an object's lock comes before a
  // list's.
  const auto lock = element->Lock();
  std::shared_ptr<const ogm::Object> tree;
  std::string text;
  std::string path;
  if (sink) {
    tree = element->ToOGM();
    text = ara::rest::serialize::ToText(*tree);
    path = element->GetUri().ToString();
  }
  Insert(element, [&]() noexcept {
    element->resource_ = self;
    element->ClearTouchedLocked();
    if (sink) sink->Added(self, element, std::move(path), std::move(tree), std::move(text));
  });
}

bool ServerResource::Remove(const ara::rest::Uuid& uuid) {
  const auto element = FindByUuid(uuid);
  if (!element) return false;
  const auto sink = GetChangeSink();
  const auto self = Self();
  const auto lock = element->Lock();
  return Erase(element, [&](std::string&& path) noexcept {
    if (element->resource_.lock() == self) element->resource_.reset();
    if (sink) sink->Removed(self, element, std::move(path));
  });
}

void ServerResource::SetDescription(const std::string& description) {
  SetFieldValue<ogm::String>("description", description);
}

std::string ServerResource::GetDescription() const {
  return GetFieldValue<ogm::String>("description");
}

std::shared_ptr<BaseXObject> ServerResource::FindByNameRecursive(const std::string& name) const {
  return impl::FindIn(GetElements(), impl::ByName{name});
}

std::shared_ptr<BaseXObject> ServerResource::FindByUuidRecursive(const std::string& uuid) const {
  return impl::FindIn(GetElements(), impl::ByUuid{uuid});
}

std::shared_ptr<BaseXObject> ServerResource::FindByUriRecursive(const std::string& uri) const {
  return impl::FindIn(GetElements(), impl::ByUri{uri});
}

void ServerResource::OnPostQuery(const ara::rest::Uri&, const ogm::Object&, ServerReply& reply) {
  reply.SendNotAllowed(AllowedMethods());
}

ara::rest::Router ServerResource::GetRoutes() const {
  auto router = XObjectEndpoint::GetRoutes();
  for (const auto& element : GetElements()) router.Add(element->GetRoutes());
  return router;
}

void ServerResource::OnQuery(const Query& query, ServerReply& reply) {
  reply.SendBody(query.IsPlain() ? Render() : Render(query));
}

const std::shared_ptr<const Rendered>& ServerResource::Render() {
  const auto& list = Current();
  std::uint64_t version = 0;  // within one list each part only grows
  for (const auto& element : *list.items) version += element->ContentVersion();
  if (rendered_ && rendered_->version == version && renderedGeneration_ == list.generation) return rendered_;
  std::string body = "[";
  for (const auto& element : *list.items) {
    if (body.size() > 1) body += ',';
    body += element->Render()->body;
  }
  body += ']';
  rendered_ = MakeRendered(version, std::move(body));
  renderedGeneration_ = list.generation;
  return rendered_;
}

std::shared_ptr<const Rendered> ServerResource::Render(const Query& query) {
  std::string body = "[";
  for (const auto& element : *Current().items) {
    const auto& rendered = element->Render();
    if (!query.Accepts(*rendered->tree)) continue;
    if (body.size() > 1) body += ',';
    if (query.projected) {
      query.WriteTo(body, *rendered->tree);
    } else {
      body += rendered->body;
    }
  }
  body += ']';
  return MakeRendered(0, std::move(body));
}

void ServerResource::SetChangeSink(std::shared_ptr<ChangeSink> sink) {
  const std::lock_guard lock{sinkMutex_};
  sink_ = std::move(sink);
}

std::shared_ptr<ChangeSink> ServerResource::GetChangeSink() const {
  const std::lock_guard lock{sinkMutex_};
  return sink_;
}

std::shared_ptr<ServerResource> ServerResource::Self() noexcept {
  return std::static_pointer_cast<ServerResource>(weak_from_this().lock());
}

void ServerResource::TellChanged(const std::shared_ptr<ServerElement>& element) noexcept {
  if (const auto sink = GetChangeSink()) sink->Changed(Self(), element);
}

}  // namespace zuva
