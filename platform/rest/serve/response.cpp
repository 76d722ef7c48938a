#include "serve/response.h"

#include <utility>

#include <boost/beast/http/status.hpp>

#include "ara/rest/serialize/json_writer.h"

namespace zuva::serve {
namespace {

std::string StatusLine(unsigned code) {
  return "HTTP/1.1 " + std::to_string(code) + " " + StatusTitle(code) + "\r\n";
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

Response UnchangedResponse(const Rendered& document) {
  Response response;
  response.code = 304;
  response.head = StatusLine(304) + "ETag: " + document.etag + "\r\n";
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

Response ToResponse(const ServerReply& reply, std::string_view ifNoneMatch) {
  if (const auto& document = reply.GetBody()) {
    if (!ifNoneMatch.empty() && MatchesEtag(ifNoneMatch, document->etag)) return UnchangedResponse(*document);
    return DocumentResponse(document);
  }
  const auto& answer = *reply.GetAnswer();
  if (!CanCarryText(answer.code)) return ProblemResponse(500, StatusTitle(500));
  std::string fields;
  if (!answer.allow.empty()) fields = "Allow: " + std::string{answer.allow} + "\r\n";
  return ProblemResponse(answer.code, answer.text, fields);
}

}  // namespace zuva::serve
