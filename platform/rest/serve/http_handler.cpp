#include "serve/http_handler.h"

#include <utility>

#include "serve/hub.h"
#include "serve/text.h"
#include "serve/tree_write.h"

namespace zuva::serve {
namespace {

Verdict Answer(Response response) {
  Verdict verdict;
  verdict.response = std::move(response);
  return verdict;
}

Verdict Problem(unsigned code, std::string_view detail, std::string_view fields = {}) {
  return Answer(ProblemResponse(code, detail, fields));
}

/// The origin form of a target, which may have come in absolute form (RFC 9112 section 3.2.2).
std::string_view OriginForm(std::string_view target) {
  constexpr std::string_view kScheme = "http://";
  if (!EqualsIgnoringCase(target.substr(0, kScheme.size()), kScheme)) return target;
  const auto path = target.find_first_of("/?", kScheme.size());
  return path == std::string_view::npos ? std::string_view{"/"} : target.substr(path);
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

Verdict JudgeOptions(Hub& hub, const HttpRequest& request, std::string_view path) {
  std::string_view allow = XObjectEndpoint::kWritable;
  if (path != "*") {
    const auto destination = hub.tree.FindOnIo(path);
    if (!destination) return Problem(404, "Not Found");
    allow = destination.endpoint->AllowedMethods();
  }
  std::string fields = "Allow: " + std::string{allow} + "\r\n";
  if (!request.requestedMethod.empty() && hub.rules.AllowsOrigin(request.origin, request.host)) {
    fields += "Access-Control-Allow-Methods: POST\r\nAccess-Control-Allow-Headers: content-type\r\n";
  }
  return Answer(EmptyResponse(fields));
}

Verdict JudgeUpgrade(Hub& hub, const HttpRequest& request) {
  if (!request.origin.empty() && !hub.rules.AllowsOrigin(request.origin, request.host)) return Problem(403, "Foreign origin");
  if (request.webSocketVersion != "13")
    return Problem(426, "WebSocket version 13 is needed", "Upgrade: websocket\r\nSec-WebSocket-Version: 13\r\n");
  constexpr std::size_t kKeyLength = 24;  // 16 bytes in base64
  if (request.webSocketKey.size() != kKeyLength) return Problem(400, "Bad Sec-WebSocket-Key");
  Verdict verdict;
  verdict.kind = Verdict::Kind::kUpgrade;
  return verdict;
}

Verdict JudgeWrite(Hub& hub, const HttpRequest& request, std::string_view path) {
  if (!request.origin.empty() && !hub.rules.AllowsOrigin(request.origin, request.host)) return Problem(403, "Foreign origin");
  Verdict verdict;
  verdict.destination = hub.tree.FindOnIo(path);
  if (!verdict.destination) return Problem(404, "Not Found");
  if (!TakesPost(verdict.destination)) {
    ServerReply reply;
    reply.SendNotAllowed(verdict.destination.endpoint->AllowedMethods());
    return Answer(ToResponse(reply, {}));
  }
  const std::string_view type = request.contentType;
  if (!EqualsIgnoringCase(Trim(type.substr(0, type.find(';'))), "application/json")) {
    return Problem(415, "Content-Type must be application/json");
  }
  verdict.kind = Verdict::Kind::kWrite;
  verdict.path = path;
  return verdict;
}

}  // namespace

Verdict Judge(Hub& hub, const HttpRequest& request, const boost::asio::ip::address& local, std::string& knownHost) {
  if (request.hostCount != 1) return Problem(400, "One Host field is needed");
  if (knownHost.empty() || request.host != knownHost) {
    if (!hub.rules.AllowsHost(request.host, local)) return Problem(421, "This server does not go by that name");
    knownHost = request.host;
  }
  auto target = ParseTarget(OriginForm(request.target));
  if (!target) return Problem(400, "Malformed request target");
  if (target->path.empty()) target->path = "/";  // "http://host?query"
  if (request.method == HttpMethod::kOptions) return JudgeOptions(hub, request, target->path);
  if (request.method == HttpMethod::kPost) return JudgeWrite(hub, request, target->path);

  const auto destination = hub.tree.FindOnIo(target->path);
  const bool takesSockets = destination && !destination.resource;
  if (request.upgrade && request.method == HttpMethod::kGet && takesSockets) return JudgeUpgrade(hub, request);
  Request treeRequest;
  treeRequest.method = TreeMethod(request.method);
  treeRequest.path = target->path;
  treeRequest.query = std::move(target->query);
  ServerReply reply;
  Server::Dispatch(destination, treeRequest, reply);
  return Answer(ToResponse(reply, request.ifNoneMatch));
}

Response WriteResponse(const ServerReply* reply) {
  return reply ? ToResponse(*reply, {}) : ProblemResponse(503, kBusy, "Retry-After: 1\r\n");
}

}  // namespace zuva::serve
