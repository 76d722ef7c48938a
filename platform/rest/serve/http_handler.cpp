#include "serve/http_handler.h"

#include <algorithm>
#include <memory>
#include <optional>
#include <utility>

#include "serve/hub.h"
#include "serve/text.h"
#include "serve/tree_write.h"

namespace zuva::serve {
namespace {

constexpr std::string_view kBadHost = "Malformed host";
constexpr std::string_view kBadTarget = "Malformed request target";

Verdict Answer(Response response) {
  Verdict verdict;
  verdict.response = std::move(response);
  return verdict;
}

Verdict Problem(unsigned code, std::string_view detail, std::string_view fields = {}) {
  return Answer(ProblemResponse(code, detail, fields));
}

/// What a request asks for, and under which name.
struct Address {
  std::string_view host;  ///< of the target where that has one, else of the `Host` field
  std::string_view target;
};

/// Takes an absolute form apart (RFC 9112 section 3.2.2); nothing if it is not of this server's scheme or has no authority.
std::optional<Address> AddressOf(const Hub& hub, const HttpRequest& request) {
  const std::string_view target = request.target;
  if (target.starts_with('/') || target.find("://") == std::string_view::npos) return Address{request.host, target};
  const auto scheme = hub.rules.Scheme();
  if (!EqualsIgnoringCase(target.substr(0, scheme.size()), scheme)) return std::nullopt;
  const auto end = std::min(target.find_first_of("/?#", scheme.size()), target.size());
  if (end == scheme.size()) return std::nullopt;
  return Address{target.substr(scheme.size(), end - scheme.size()), end == target.size() ? std::string_view{"/"} : target.substr(end)};
}

/// Refuses a request that does not name this server. `knownHost` spares the question for a name that has passed.
std::optional<Verdict> RefuseHost(const Hub& hub, const HttpRequest& request, const Address& address, const boost::asio::ip::address& local,
                                  std::string& knownHost) {
  const bool isAbsolute = address.host.data() != request.host.data();
  if (isAbsolute && hub.rules.KindOf(request.host, local) == HostKind::kInvalid) return Problem(400, kBadHost);
  if (!knownHost.empty() && address.host == knownHost) return std::nullopt;
  switch (hub.rules.KindOf(address.host, local)) {
    case HostKind::kInvalid:
      return Problem(400, kBadHost);
    case HostKind::kForeign:
      return Problem(421, "This server does not go by that name");
    case HostKind::kOwn:
      break;
  }
  knownHost = address.host;
  return std::nullopt;
}

/// Whether this stands for 16 bytes in base64 (RFC 6455 section 4.2.1).
bool IsWebSocketKey(std::string_view key) {
  constexpr std::string_view kDigits = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
  constexpr std::size_t kLength = 24;
  return key.size() == kLength && key.find_first_not_of(kDigits) == kLength - 2 && key.ends_with("==");
}

Method TreeMethod(HttpMethod method) {
  switch (method) {
    case HttpMethod::kGet:
      return Method::Get;
    case HttpMethod::kHead:
      return Method::Head;
    case HttpMethod::kPost:
      return Method::Post;
    case HttpMethod::kPut:
      return Method::Put;
    case HttpMethod::kDelete:
      return Method::Delete;
    default:
      return Method::Unknown;
  }
}

/// A page's browser asks whether the page may write. It shows no token when it asks.
bool IsPreflight(const Hub& hub, const HttpRequest& request, std::string_view host) {
  return request.method == HttpMethod::kOptions && !request.requestedMethod.empty() && hub.rules.AllowsOrigin(request.origin, host);
}

/// The file that a path stands for, if no service owns the path.
std::shared_ptr<const Document> FindDocument(const Hub& hub, std::string_view path) {
  if (!hub.documents) return nullptr;
  const auto first = path.substr(0, path.find('/', 1));
  return hub.tree.FindOnIo(first) ? nullptr : hub.documents->Find(path);
}

Verdict JudgeOptions(Hub& hub, const HttpRequest& request, std::string_view host, std::string_view path) {
  std::string_view allow = XObjectEndpoint::kWritable;
  if (path != "*") {
    const auto destination = hub.tree.FindOnIo(path);
    if (!destination && !FindDocument(hub, path)) return Problem(404, "Not Found");
    allow = destination ? destination.endpoint->AllowedMethods() : XObjectEndpoint::kReadOnly;
  }
  std::string fields = "Allow: " + std::string{allow} + "\r\n";
  if (IsPreflight(hub, request, host)) {
    fields += "Access-Control-Allow-Methods: POST\r\nAccess-Control-Allow-Headers: content-type";
    fields += hub.tokens.AreNeeded() ? ", authorization\r\n" : "\r\n";
  }
  return Answer(EmptyResponse(fields));
}

Verdict JudgeUpgrade(Hub& hub, const HttpRequest& request, std::string_view host) {
  if (!request.origin.empty() && !hub.rules.AllowsOrigin(request.origin, host)) return Problem(403, "Foreign origin");
  if (request.version < 11) return Problem(400, "A WebSocket needs HTTP/1.1");
  if (request.webSocketVersion != "13") {
    return Problem(426, "WebSocket version 13 is needed", "Connection: Upgrade\r\nUpgrade: websocket\r\nSec-WebSocket-Version: 13\r\n");
  }
  if (!IsWebSocketKey(request.webSocketKey)) return Problem(400, "Bad Sec-WebSocket-Key");
  Verdict verdict;
  verdict.kind = Verdict::Kind::kUpgrade;
  return verdict;
}

Verdict JudgeWrite(Hub& hub, const HttpRequest& request, std::string_view host, std::string_view path, Rights rights) {
  if (!request.origin.empty() && !hub.rules.AllowsOrigin(request.origin, host)) return Problem(403, "Foreign origin");
  if (rights != Rights::kWrite) return Problem(403, kReadOnly);
  Verdict verdict;
  verdict.destination = hub.tree.FindOnIo(path);
  if (!verdict.destination && FindDocument(hub, path)) return Problem(405, "Method Not Allowed", "Allow: GET, HEAD\r\n");
  if (!verdict.destination) return Problem(404, "Not Found");
  if (!TakesPost(verdict.destination)) {
    ServerReply reply;
    reply.SendNotAllowed(verdict.destination.endpoint->AllowedMethods());
    return Answer(ToResponse(reply));
  }
  const std::string_view type = request.contentType;
  if (!EqualsIgnoringCase(Trim(type.substr(0, type.find(';'))), "application/json")) {
    return Problem(415, "Content-Type must be application/json");
  }
  verdict.kind = Verdict::Kind::kWrite;
  verdict.path = path;
  return verdict;
}

bool IsReading(const HttpRequest& request) {
  return request.method == HttpMethod::kGet || request.method == HttpMethod::kHead;
}

/// The answer from the folder of documents, where the tree has none or a person asks for the list of services.
std::optional<Verdict> DocumentFor(Hub& hub, const HttpRequest& request, std::string_view path, bool inTree) {
  if (!hub.documents) return std::nullopt;
  const bool wantsPage = path == "/" && IsReading(request) && Documents::PrefersHtml(request.accept);
  if (inTree && !wantsPage) return std::nullopt;
  auto document = wantsPage ? hub.documents->Find("/index.html") : FindDocument(hub, path);
  if (!document) return std::nullopt;
  if (!IsReading(request)) return Problem(405, "Method Not Allowed", "Allow: GET, HEAD\r\n");
  return Answer(ConditionalResponse(DocumentResponse(std::move(document)), request.GetPreconditions()));
}

}  // namespace

Verdict Judge(Hub& hub, const HttpRequest& request, const boost::asio::ip::address& local, std::string& knownHost) {
  if (request.hostCount != 1) return Problem(400, "One Host field is needed");
  const auto address = AddressOf(hub, request);
  if (!address) return Problem(400, kBadTarget);
  if (auto refusal = RefuseHost(hub, request, *address, local, knownHost)) return std::move(*refusal);
  const auto rights = hub.tokens.RightsOf(request);
  if (rights == Rights::kNone && !IsPreflight(hub, request, address->host)) {
    return Problem(401, "A bearer token is needed", "WWW-Authenticate: Bearer\r\n");
  }
  auto target = ParseTarget(address->target);
  if (!target) return Problem(400, kBadTarget);
  if (target->path.empty()) target->path = "/";  // "http://host?query"
  if (request.method == HttpMethod::kOptions) return JudgeOptions(hub, request, address->host, target->path);
  if (request.method == HttpMethod::kPost) return JudgeWrite(hub, request, address->host, target->path, rights);

  const auto destination = hub.tree.FindOnIo(target->path);
  const bool takesSockets = destination && !destination.resource;
  if (request.upgrade && request.method == HttpMethod::kGet && takesSockets) {
    auto verdict = JudgeUpgrade(hub, request, address->host);
    verdict.rights = rights;
    return verdict;
  }
  if (auto document = DocumentFor(hub, request, target->path, bool{destination})) return std::move(*document);
  Request treeRequest;
  treeRequest.method = TreeMethod(request.method);
  treeRequest.path = target->path;
  treeRequest.query = std::move(target->query);
  ServerReply reply;
  Server::Dispatch(destination, treeRequest, reply);
  return Answer(ToResponse(reply, request.GetPreconditions()));
}

Response WriteResponse(const ServerReply* reply) {
  return reply ? ToResponse(*reply) : ProblemResponse(503, kBusy, "Retry-After: 1\r\n");
}

}  // namespace zuva::serve
