#pragma once

#include <memory>
#include <string>
#include <string_view>

#include "serve/documents.h"
#include "zuva/preconditions.h"
#include "zuva/rendered.h"
#include "zuva/server_reply.h"

namespace zuva::serve {

/// The standard phrase of a status (RFC 9110), which is also the title of a problem.
std::string StatusTitle(unsigned code);
/// Whether an answer with a text can have this status. An application may give any number.
bool CanCarryText(unsigned code);
/// `{"status":…,"title":"…","detail":"…"}` (RFC 9457).
std::string ProblemBody(unsigned code, std::string_view detail);

/// What goes back for one HTTP request. The head lacks its `Date` line and the empty line.
struct Response {
  unsigned code = 200;
  std::shared_ptr<const Rendered> document;  ///< with this, head and body are the document's
  std::shared_ptr<const Document> file;      ///< the same document, where its body is read while it is sent
  std::string head;
  std::string body;

  std::string_view Head() const;
  std::string_view Body() const { return document ? document->body : body; }
};

/// 200 and the document; its head is made at the first use. I/O thread only.
Response DocumentResponse(std::shared_ptr<const Rendered> document);
Response DocumentResponse(std::shared_ptr<const Document> document);
/// The answer to a GET or HEAD of this document: itself, 304 for a client that has it already, or 412 (RFC 9110 section 13.2.2).
Response ConditionalResponse(Response document, const Preconditions& preconditions);
/// An answer that is no document. `fields` are further lines of the head, each with its line end.
Response ProblemResponse(unsigned code, std::string_view detail, std::string_view fields = {});
/// 204 with these lines.
Response EmptyResponse(std::string_view fields);
/// What the tree has answered; a reply without an answer is a 500. The preconditions are those of a GET or HEAD.
Response ToResponse(const ServerReply& reply, const Preconditions& preconditions = {});

}  // namespace zuva::serve
