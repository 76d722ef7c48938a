#include "zuva/x_object_endpoint.h"

#include <algorithm>
#include <functional>
#include <string>
#include <vector>

#include "ara/rest/serialize/json_writer.h"

namespace zuva {

using ara::rest::Matches;

ara::rest::Router XObjectEndpoint::GetRoutes() const {
  ara::rest::Router router;
  router.Add(GetUri().ToString());
  return router;
}

void XObjectEndpoint::ClearRouting(ara::rest::Router& router) const {
  const auto routes = GetRoutes();
  for (const auto& path : routes.GetPaths()) router.Remove(path);
}

std::size_t XObjectEndpoint::GetQueryHash(const ara::rest::Uri& uri) const {
  auto text = uri.GetText();
  const auto mark = text.find('?');
  std::vector<std::string_view> parts{text.substr(0, mark)};
  text.remove_prefix(mark == std::string_view::npos ? text.size() : mark + 1);
  while (!text.empty()) {
    const auto end = text.find('&');
    parts.push_back(text.substr(0, end));
    text.remove_prefix(end == std::string_view::npos ? text.size() : end + 1);
  }
  std::sort(parts.begin() + 1, parts.end());
  std::size_t hash = 0;
  for (const auto part : parts) hash = hash * 31 + std::hash<std::string_view>{}(part);
  return hash;
}

void XObjectEndpoint::OnPost(const Request&, ServerReply& reply, const Matches&) {
  reply.SendNotAllowed(AllowedMethods());
}
void XObjectEndpoint::OnPut(const Request&, ServerReply& reply, const Matches&) {
  reply.SendNotAllowed(AllowedMethods());
}
void XObjectEndpoint::OnDelete(const Request&, ServerReply& reply, const Matches&) {
  reply.SendNotAllowed(AllowedMethods());
}
void XObjectEndpoint::OnHead(const Request& request, ServerReply& reply, const Matches& matches) {
  OnGet(request, reply, matches);
}
void XObjectEndpoint::OnWs(const Request&, ServerReply& reply, const Matches&) {
  reply.SendNotAllowed(AllowedMethods());
}
void XObjectEndpoint::OnUnknownMethod(const Request&, ServerReply& reply, const Matches&) {
  reply.SendNotAllowed(AllowedMethods());
}
void XObjectEndpoint::OnWsQuery(const Query&, ServerReply& reply) {
  reply.SendNotAllowed(AllowedMethods());
}
void XObjectEndpoint::OnUpdate(const ogm::Object&, ServerReply& reply) {
  reply.SendNotAllowed(AllowedMethods());
}

void XObjectEndpoint::OnGet(const Request& request, ServerReply& reply, const Matches& matches) {
  if (IsIdentity(request.query, matches)) return OnIdentity(reply);
  if (IsSpecification(request.query, matches)) return OnSpecification(reply);
  if (AskBeforeGet(reply)) OnQuery(request.query, reply);
}

void XObjectEndpoint::OnQuery(const Query&, ServerReply& reply) {
  OnIdentity(reply);
}

void XObjectEndpoint::OnIdentity(ServerReply& reply) {
  reply.SendBody(MakeRendered(0, IdentityTree()));
}

void XObjectEndpoint::OnSpecification(ServerReply& reply) {
  auto spec = GetSpec();
  if (!spec) return reply.SendError("Not Found", 404);
  if (spec != renderedSpec_) {
    specText_ = MakeRendered(0, ara::rest::serialize::ToText(*spec));
    renderedSpec_ = std::move(spec);
  }
  reply.SendBody(specText_);
}

ara::rest::Pointer<ogm::Object> XObjectEndpoint::IdentityTree() const {
  const auto tree = BaseType::ToOGM();
  auto identity = ara::rest::MakePointer<ogm::Object>();
  for (const auto* const name : {"id", "name", "uri", "description", "versions"}) {
    if (const auto* const field = tree->Find(name)) identity->Append(field->Clone());
  }
  return identity;
}

bool XObjectEndpoint::IsIdentity(const Query& query, const Matches&) const {
  return query.identity;
}
bool XObjectEndpoint::IsSpecification(const Query& query, const Matches&) const {
  return query.specification;
}

}  // namespace zuva
