#include "zuva/server_service.h"

#include <exception>
#include <utility>

#include "zuva/find_below.h"
#include "zuva/frontend.h"
#include "zuva/logger.h"

namespace zuva {

ServerService::ServerService(const ara::rest::Uuid& uuid, const ara::rest::Uri& uri, std::string name)
    : XObjectEndpoint{uuid, uri, std::move(name)} {
  SetFieldValue<ogm::String>("description", {});
  AddField<ogm::Array>("versions");
}

void ServerService::Add(const std::shared_ptr<ServerResource>& resource) {
  Insert(resource, []() noexcept {});
  const std::lock_guard lock{attachMutex_};
  resource->SetChangeSink(sink_);
}

bool ServerService::Remove(const ara::rest::Uuid& uuid) {
  const auto resource = FindByUuid(uuid);
  if (!resource || !Erase(resource, [](std::string&&) noexcept {})) return false;
  resource->SetChangeSink(nullptr);
  return true;
}

void ServerService::AddVersion(const std::string& version) {
  const ChangeScope scope{*this};
  auto versions = GetFieldValue<ogm::Array>("versions");
  versions->Append(ara::rest::MakePointer<ogm::String>(version));
  SetFieldValue<ogm::Array>("versions", std::move(versions));
}

std::vector<std::string> ServerService::GetVersions() const {
  const auto array = GetFieldValue<ogm::Array>("versions");
  std::vector<std::string> versions;
  for (const auto& version : *array) versions.push_back(static_cast<const ogm::String&>(version).GetValue());
  return versions;
}

std::shared_ptr<ServerService> ServerService::Register(const UriList& uris) {
  const std::lock_guard lock{registryMutex_};
  MarkAnnounced();
  AnnounceLocked(&uris);
  return Self();
}

void ServerService::Deregister() {
  const std::lock_guard lock{registryMutex_};
  WithdrawLocked();
}

void ServerService::FinishAnnouncing() noexcept {
  const std::lock_guard lock{registryMutex_};
  if (IsAnnounced()) AnnounceLocked(nullptr);  // else withdrawn meanwhile
}

void ServerService::Detach() noexcept {
  const std::lock_guard lock{registryMutex_};
  WithdrawLocked();
  const std::lock_guard attachLock{attachMutex_};
  frontend_.reset();
}

// What the two throw is want of memory: the registry misses a change, and nothing else.
void ServerService::AnnounceLocked(const UriList* uris) noexcept {
  try {
    std::vector<std::string> texts;
    for (std::size_t i = 0; uris && i != uris->size(); ++i) texts.push_back((*uris)[i].ToString());
    if (const auto frontend = GetFrontend()) frontend->Announce(*this, std::move(texts));
  } catch (const std::exception& error) {
    GetLogger().LogWarn() << "A service could not be announced: " << error;
  }
}

void ServerService::WithdrawLocked() noexcept {
  if (!announced_.exchange(false)) return;
  try {
    if (const auto frontend = GetFrontend()) frontend->Withdraw(*this);
  } catch (const std::exception& error) {
    GetLogger().LogWarn() << "A service could not be withdrawn: " << error;
  }
}

std::string ServerService::GetDescription() const {
  return GetFieldValue<ogm::String>("description");
}

std::shared_ptr<BaseXObject> ServerService::FindByNameRecursive(const std::string& name) const {
  return impl::FindBelow(GetResources(), impl::ByName{name});
}

std::shared_ptr<BaseXObject> ServerService::FindByUuidRecursive(const std::string& uuid) const {
  return impl::FindBelow(GetResources(), impl::ByUuid{uuid});
}

std::shared_ptr<BaseXObject> ServerService::FindByUriRecursive(const std::string& uri) const {
  return impl::FindBelow(GetResources(), impl::ByUri{uri});
}

ara::rest::Router ServerService::GetRoutes() const {
  auto router = XObjectEndpoint::GetRoutes();
  for (const auto& resource : GetResources()) router.Add(resource->GetRoutes());
  return router;
}

void ServerService::OnQuery(const Query&, ServerReply& reply) {
  auto tree = IdentityTree();
  auto resources = ara::rest::MakePointer<ogm::Array>();
  for (const auto& resource : *Current().items) resources->Append(resource->IdentityTree());
  tree->Append("resources", std::move(resources));
  reply.SendBody(MakeRendered(0, std::move(tree)));
}

void ServerService::Attach(std::shared_ptr<ChangeSink> sink, std::weak_ptr<Frontend> frontend) {
  const std::lock_guard lock{attachMutex_};
  sink_ = std::move(sink);
  frontend_ = std::move(frontend);
  for (const auto& resource : GetResources()) resource->SetChangeSink(sink_);
}

std::shared_ptr<ServerService> ServerService::Self() {
  return std::static_pointer_cast<ServerService>(weak_from_this().lock());
}

std::shared_ptr<Frontend> ServerService::GetFrontend() const {
  const std::lock_guard lock{attachMutex_};
  return frontend_.lock();
}

}  // namespace zuva
