#pragma once

#include <atomic>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

#include "zuva/container.h"
#include "zuva/server_resource.h"
#include "zuva/x_object_endpoint.h"

namespace zuva {

class Frontend;

/// Resources under one URI, announced as a whole at the service registry.
class ServerService : public XObjectEndpoint, public Container<ServerResource> {
 public:
  using UriList = std::vector<ara::rest::Uri, ara::rest::StdAllocator<ara::rest::Uri>>;

  ServerService(const ara::rest::Uuid& uuid, const ara::rest::Uri& uri, std::string name);

  /// Routes the resource below the service. One that is there already stays; otherwise throws as `ServerResource::Add`.
  void Add(const std::shared_ptr<ServerResource>& resource);
  /// Takes the resource out, with its paths; false if there is none with this identifier.
  bool Remove(const ara::rest::Uuid& uuid);
  Snapshot<ServerResource> GetResources() const { return Snapshot<ServerResource>{GetList()->items}; }

  void AddVersion(const std::string& version);
  /// Announces the service in this process, and at the server's registry at these URIs, which may take seconds. Result: the service.
  std::shared_ptr<ServerService> Register(const UriList& uris);
  /// Withdraws the announcement; may take as long.
  void Deregister();
  bool IsAnnounced() const noexcept { return announced_.load(std::memory_order_acquire); }

  /// The announcement asks for this and the versions; the framework calls none of the four between.
  virtual std::string GetDescription() const;
  /// 0: the port is the server's matter.
  virtual unsigned short GetPort() const { return 0; }
  virtual std::vector<std::string> GetServiceCategories() const { return {}; }
  virtual std::vector<std::string> GetPrivileges() const { return {}; }
  virtual bool IsLocal() const { return true; }
  virtual std::vector<std::string> GetVersions() const;
  // The framework calls none of the three.
  virtual std::shared_ptr<BaseXObject> FindByNameRecursive(const std::string& name) const;
  virtual std::shared_ptr<BaseXObject> FindByUuidRecursive(const std::string& uuid) const;
  virtual std::shared_ptr<BaseXObject> FindByUriRecursive(const std::string& uri) const;

  XObjectType GetXObjectType() const noexcept override { return XObjectType::Service; }
  ara::rest::Router GetRoutes() const override;
  void OnQuery(const Query& query, ServerReply& reply) override;

 private:
  friend class Server;

  void Attach(std::shared_ptr<ChangeSink> sink, std::weak_ptr<Frontend> frontend);
  std::shared_ptr<ServerService> Self();
  /// The two halves of the announcement at the server's start, the first at once, the second off the caller's thread.
  void MarkAnnounced() noexcept { announced_.store(true, std::memory_order_release); }
  void FinishAnnouncing() noexcept;
  /// Deregisters for good: later announcements stay in this process.
  void Detach() noexcept;
  void AnnounceLocked(const UriList* uris) noexcept;
  void WithdrawLocked() noexcept;
  std::shared_ptr<Frontend> GetFrontend() const;

  mutable std::mutex attachMutex_;  // guards the two members below
  std::shared_ptr<ChangeSink> sink_;
  std::weak_ptr<Frontend> frontend_;

  std::mutex registryMutex_;  // held over one announcement or withdrawal, so that the last call decides
  std::atomic<bool> announced_{false};
};

}  // namespace zuva
