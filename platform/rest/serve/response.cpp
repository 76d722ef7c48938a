#include "serve/response.h"

#include <utility>

#include <boost/beast/http/status.hpp>

#include "ara/rest/serialize/json_writer.h"

namespace zuva::serve {
namespace {

constexpr std::string_view kInternalError = "Internal Server Error";

std::string StatusLine(unsigned code) {
  return "HTTP/1.1 " + std::to_string(code) + " " + StatusTitle(code) + "\r\n";
}

/// The `Cache-Control` line of a head with its line end; empty if it has none.
std::string_view CacheControlOf(std::string_view head) {
  constexpr std::string_view kEnd = "\r\n";
  const auto found = head.find("\r\nCache-Control: ");
  if (found == std::string_view::npos) return {};
  head.remove_prefix(found + kEnd.size());
  return head.substr(0, head.find(kEnd) + kEnd.size());
}

std::string DocumentHead(const Rendered& document) {
  return StatusLine(200) + "Content-Type: application/json\r\nContent-Length: " + std::to_string(document.body.size()) +
         "\r\nETag: " + document.etag + "\r\n";
}

}  // namespace

std::string StatusTitle(unsigned code) {
  return std::string{boost::beast::http::obsolete_reason(boost::beast::http::int_to_status(code))};
}

bool CanCarryText(unsigned code) {
  return code >= 200 && code < 600 && code != 204 && code != 205 && code != 304;
}

std::string ProblemBody(unsigned code, std::string_view detail) {
  std::string body = "{\"status\":" + std::to_string(code) + ",\"title\":\"" + StatusTitle(code) + "\",\"detail\":";
  ara::rest::serialize::WriteString(body, detail);
  body += '}';
  return body;
}

std::string_view Response::Head() const {
  if (!document) return head;
  if (document->head.empty()) document->head = DocumentHead(*document);
  return document->head;
}

Response DocumentResponse(std::shared_ptr<const Rendered> document) {
  Response response;
  response.document = std::move(document);
  return response;
}

Response DocumentResponse(std::shared_ptr<const Document> document) {
  Response response;
  response.document = document;
  response.file = std::move(document);
  return response;
}

Response ConditionalResponse(Response document, const Preconditions& preconditions) {
  const auto& etag = document.document->etag;
  if (!preconditions.MatchHolds(etag)) return ProblemResponse(412, kPreconditionFailed);
  if (preconditions.NoneMatchHolds(etag)) return document;
  Response response;
  response.code = 304;
  response.head = StatusLine(304) + "ETag: " + etag + "\r\n";
  response.head += CacheControlOf(document.Head());  // what is kept is kept under the same rules
  return response;
}

Response ProblemResponse(unsigned code, std::string_view detail, std::string_view fields) {
  Response response;
  response.code = code;
  response.body = ProblemBody(code, detail);
  response.head = StatusLine(code) + (code < 400 ? "Content-Type: application/json" : "Content-Type: application/problem+json") +
                  "\r\nContent-Length: " + std::to_string(response.body.size()) + "\r\n";
  response.head += fields;
  return response;
}

Response EmptyResponse(std::string_view fields) {
  Response response;
  response.code = 204;
  response.head = StatusLine(204);
  response.head += fields;
  return response;
}

Response ToResponse(const ServerReply& reply, const Preconditions& preconditions) {
  if (const auto& document = reply.GetBody()) {
    return preconditions.AreGiven() ? ConditionalResponse(DocumentResponse(document), preconditions) : DocumentResponse(document);
  }
  if (!reply.GetAnswer()) return ProblemResponse(500, kInternalError);
  const auto& answer = *reply.GetAnswer();
  if (!CanCarryText(answer.code)) return ProblemResponse(500, kInternalError);
  std::string fields;
  if (!answer.allow.empty()) fields = "Allow: " + std::string{answer.allow} + "\r\n";
  return ProblemResponse(answer.code, answer.text, fields);
}

}  // namespace zuva::serve
