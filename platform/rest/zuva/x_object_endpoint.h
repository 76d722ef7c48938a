#pragma once

#include <cstddef>
#include <string_view>

#include "ara/rest/router.h"
#include "ara/rest/uri.h"
#include "zuva/request.h"
#include "zuva/server_x_object.h"

namespace zuva {

/// What a path leads to. The walk over server, service, resource and element calls one of the `On...` operations, and that
/// answers the request. GET and HEAD run on the I/O thread, everything else on any thread. What an endpoint doesn't offer is
/// answered with 405.
class XObjectEndpoint : public ServerXObject {
 public:
  static constexpr std::string_view kReadOnly = "GET, HEAD";
  static constexpr std::string_view kWritable = "GET, HEAD, POST";

  using ServerXObject::ServerXObject;

  /// The paths that this object and those below it answer. The framework does not call it: the walk finds them.
  virtual ara::rest::Router GetRoutes() const;
  /// Takes those paths out. The framework does not call it.
  virtual void ClearRouting(ara::rest::Router& router) const;
  /// The same number for the same query, whatever the order of its parts. The framework does not call it.
  virtual std::size_t GetQueryHash(const ara::rest::Uri& uri) const;

  // One for each method of HTTP. `Server::Dispatch` calls them.
  virtual void OnPost(const Request& request, ServerReply& reply, const ara::rest::Matches& matches);
  virtual void OnPut(const Request& request, ServerReply& reply, const ara::rest::Matches& matches);
  virtual void OnDelete(const Request& request, ServerReply& reply, const ara::rest::Matches& matches);
  virtual void OnGet(const Request& request, ServerReply& reply, const ara::rest::Matches& matches);
  virtual void OnHead(const Request& request, ServerReply& reply, const ara::rest::Matches& matches);
  virtual void OnUnknownMethod(const Request& request, ServerReply& reply, const ara::rest::Matches& matches);
  /// The framework does not call it: a WebSocket is taken at the service, and its messages come by the operations above.
  virtual void OnWs(const Request& request, ServerReply& reply, const ara::rest::Matches& matches);

  /// `OnGet` calls it for what is neither identity nor specification.
  virtual void OnQuery(const Query& query, ServerReply& reply);
  /// The framework does not call it: a WebSocket's query comes by `OnGet`.
  virtual void OnWsQuery(const Query& query, ServerReply& reply);
  /// `ServerElement::OnPost` calls it once the pre-update callback has accepted.
  virtual void OnUpdate(const ogm::Object& object, ServerReply& reply);
  // `OnGet` calls these four.
  virtual void OnIdentity(ServerReply& reply);
  virtual void OnSpecification(ServerReply& reply);
  virtual bool IsIdentity(const Query& query, const ara::rest::Matches& matches) const;
  virtual bool IsSpecification(const Query& query, const ara::rest::Matches& matches) const;

  /// What tells the object from others: `id`, `name`, `uri`, and as far as it has them `description` and `versions`.
  ara::rest::Pointer<ogm::Object> IdentityTree() const;
  /// The methods offered here, as an `Allow` field tells them. Any thread.
  virtual std::string_view AllowedMethods() const { return kReadOnly; }

 private:
  // The specification's text and the document that it was made from. I/O thread only.
  std::shared_ptr<const ogm::Object> renderedSpec_;
  std::shared_ptr<const Rendered> specText_;
};

}  // namespace zuva
