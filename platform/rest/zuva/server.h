#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <thread>
#include <utility>

#include "zuva/container.h"
#include "zuva/frontend.h"
#include "zuva/server_service.h"
#include "zuva/x_object_endpoint.h"

namespace zuva {

/// The root of the tree: holds the services, finds what a path leads to, and serves it all through a frontend.
class Server : public XObjectEndpoint, public Container<ServerService> {
 public:
  /// What a path leads to; keeps it alive.
  struct Destination {
    XObjectEndpoint* endpoint = nullptr;  ///< null: nothing is there
    ara::rest::Matches matches;
    std::shared_ptr<ServerService> service;    ///< null above it
    std::shared_ptr<ServerResource> resource;  ///< null above it
    std::shared_ptr<ServerElement> element;    ///< null above it

    explicit operator bool() const noexcept { return endpoint != nullptr; }
  };

  /// Reads the configuration file; throws if it is missing or wrong, after the reason was logged.
  Server(std::string name, const std::string& configPath);
  ~Server() override;

  /// Adds the service; one that is there already stays as it is. Throws as `ServerResource::Add`.
  void Add(const std::shared_ptr<ServerService>& service);
  Snapshot<ServerService> GetServices() const { return Snapshot<ServerService>{GetList()->items}; }
  /// Begins to serve, and announces every service off the caller's thread; returns when requests are taken. Throws if no listener
  /// could be opened. The argument has no meaning here.
  void Start(bool wait);
  /// Withdraws the services and ends the serving. With true it waits until callbacks that run are answered; so does false here.
  /// Harmless without a start. Tells whether the server was running.
  bool Stop(bool wait);
  /// Where changes are told; for the frontend, before any service is added.
  void SetChangeSink(std::shared_ptr<ChangeSink> sink) { sink_ = std::move(sink); }

  // The framework calls none of the three.
  virtual std::shared_ptr<BaseXObject> FindByNameRecursive(const std::string& name) const;
  virtual std::shared_ptr<BaseXObject> FindByUuidRecursive(const std::string& uuid) const;
  virtual std::shared_ptr<BaseXObject> FindByUriRecursive(const std::string& uri) const;

  /// Walks the path, whose percent-encoded unreserved characters count as themselves. The destination's `matches` are views into it as
  /// it was given. Any thread.
  Destination Find(std::string_view path) { return Walk(path, Reader::any); }
  /// The same without a lock unless a list changed. I/O thread only.
  Destination FindOnIo(std::string_view path) { return Walk(path, Reader::ioThread); }
  /// Lets the destination answer, or answers 404 for none. Always answers: an exception is logged and becomes 500, a request that
  /// its callback refused in silence 400. GET and HEAD on the I/O thread only, everything else on any thread.
  static void Dispatch(const Destination& destination, const Request& request, ServerReply& reply);
  /// Finds and dispatches, with the thread rule of `Dispatch`.
  void Route(const Request& request, ServerReply& reply);

  XObjectType GetXObjectType() const noexcept override { return XObjectType::Server; }
  ara::rest::Router GetRoutes() const override;
  void OnQuery(const Query& query, ServerReply& reply) override;
  void OnIdentity(ServerReply& reply) override;

 private:
  enum class Reader { any, ioThread };

  Destination Walk(std::string_view path, Reader reader);

  std::shared_ptr<ChangeSink> sink_;
  std::shared_ptr<Frontend> frontend_;
  std::thread announcer_;
  bool started_ = false;
};

}  // namespace zuva
