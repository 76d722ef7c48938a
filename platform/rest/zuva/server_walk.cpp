// The server as the root of the tree; what starts and stops it stands in server.cpp.
#include <charconv>
#include <exception>
#include <string>
#include <string_view>
#include <utility>

#include "zuva/find_below.h"
#include "zuva/logger.h"
#include "zuva/server.h"

namespace zuva {
namespace {

constexpr std::string_view kUnreserved = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789-._~";

/// With each percent-encoded unreserved character decoded (RFC 3986 section 6.2.2.2). All other escapes, "%2F" among them, stay.
std::string Normalized(std::string_view segment) {
  std::string text;
  for (std::size_t i = 0; i != segment.size(); ++i) {
    unsigned code = 0;
    const char* const digits = segment.data() + i + 1;
    const bool isEscape = segment[i] == '%' && segment.size() - i > 2 && std::from_chars(digits, digits + 2, code, 16).ptr == digits + 2;
    const auto character = static_cast<char>(code);
    if (isEscape && kUnreserved.find(character) != std::string_view::npos) {
      text += character;
      i += 2;
    } else {
      text += segment[i];
    }
  }
  return text;
}

}  // namespace

void Server::Add(const std::shared_ptr<ServerService>& service) {
  Insert(service, []() noexcept {});
  service->Attach(sink_, frontend_);  // again for one that is there: its resources may be more by now
}

std::shared_ptr<BaseXObject> Server::FindByNameRecursive(const std::string& name) const {
  return impl::FindBelow(GetServices(), impl::ByName{name});
}

std::shared_ptr<BaseXObject> Server::FindByUuidRecursive(const std::string& uuid) const {
  return impl::FindBelow(GetServices(), impl::ByUuid{uuid});
}

std::shared_ptr<BaseXObject> Server::FindByUriRecursive(const std::string& uri) const {
  return impl::FindBelow(GetServices(), impl::ByUri{uri});
}

Server::Destination Server::Walk(std::string_view path, Reader reader) {
  const auto find = [reader](const auto& container, std::string_view segment) {
    std::string normalized;
    if (segment.find('%') != std::string_view::npos) {
      normalized = Normalized(segment);
      segment = normalized;
    }
    return reader == Reader::ioThread ? container.FindBySegmentOnIo(segment) : container.FindBySegment(segment);
  };
  const auto matches = ara::rest::Matches::Split(path);
  if (!matches) return {};
  Destination destination;
  destination.matches = *matches;
  if (matches->service.empty()) {
    destination.endpoint = this;
    return destination;
  }
  if (!(destination.service = find(*this, matches->service))) return {};
  if (matches->resource.empty()) {
    destination.endpoint = destination.service.get();
    return destination;
  }
  if (!(destination.resource = find(*destination.service, matches->resource))) return {};
  if (matches->element.empty()) {
    destination.endpoint = destination.resource.get();
    return destination;
  }
  if (!(destination.element = find(*destination.resource, matches->element))) return {};
  destination.endpoint = destination.element.get();
  return destination;
}

void Server::Dispatch(const Destination& destination, const Request& request, ServerReply& reply) {
  if (!destination) return reply.SendError("Not Found", 404);
  auto& endpoint = *destination.endpoint;
  const auto& matches = destination.matches;
  try {
    switch (request.method) {
      case Method::Get:
        endpoint.OnGet(request, reply, matches);
        break;
      case Method::Head:
        endpoint.OnHead(request, reply, matches);
        break;
      case Method::Post:
        endpoint.OnPost(request, reply, matches);
        break;
      case Method::Put:
        endpoint.OnPut(request, reply, matches);
        break;
      case Method::Delete:
        endpoint.OnDelete(request, reply, matches);
        break;
      case Method::Unknown:
        endpoint.OnUnknownMethod(request, reply, matches);
        break;
    }
  } catch (const std::exception& error) {
    GetLogger().LogError() << "A request of " << request.path << " ended with an exception: " << error;
    reply.SendInternalError();
  } catch (...) {  // an application's callback may throw anything
    GetLogger().LogError() << "A request of " << request.path << " ended with an unknown exception";
    reply.SendInternalError();
  }
  if (!reply.IsAnswered()) reply.SendError("Bad Request", 400);
}

void Server::Route(const Request& request, ServerReply& reply) {
  const bool reads = request.method == Method::Get || request.method == Method::Head;
  Dispatch(Walk(request.path, reads ? Reader::ioThread : Reader::any), request, reply);
}

ara::rest::Router Server::GetRoutes() const {
  auto router = XObjectEndpoint::GetRoutes();
  for (const auto& service : GetServices()) router.Add(service->GetRoutes());
  return router;
}

void Server::OnQuery(const Query&, ServerReply& reply) {
  auto services = ara::rest::MakePointer<ogm::Array>();
  for (const auto& service : *Current().items) {
    if (service->IsAnnounced()) services->Append(service->IdentityTree());
  }
  auto tree = ara::rest::MakePointer<ogm::Object>();
  tree->Append("name", ara::rest::MakePointer<ogm::String>(GetName()));
  tree->Append("services", std::move(services));
  reply.SendBody(MakeRendered(0, std::move(tree)));
}

void Server::OnIdentity(ServerReply& reply) {
  auto tree = ara::rest::MakePointer<ogm::Object>();
  tree->Append("name", ara::rest::MakePointer<ogm::String>(GetName()));
  reply.SendBody(MakeRendered(0, std::move(tree)));
}

}  // namespace zuva
