#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "zuva/preconditions.h"

namespace zuva::serve {

enum class HttpMethod : std::uint8_t { kGet, kHead, kPost, kOptions, kPut, kDelete, kOther };

/// One HTTP request as far as this server looks at it. The strings keep their room from request to request.
struct HttpRequest {
  HttpMethod method = HttpMethod::kOther;
  bool keepAlive = false;
  bool upgrade = false;          ///< asks for a WebSocket
  bool expectsContinue = false;  ///< waits for "100 Continue" before it sends its body
  unsigned version = 11;
  unsigned hostCount = 0;
  bool hasIfMatch = false;  ///< even an empty `If-Match` is a condition: one that never holds
  std::string target;
  std::string host;
  std::string origin;
  std::string contentType;
  std::string ifMatch;
  std::string ifNoneMatch;
  std::string requestedMethod;  ///< of a CORS preflight
  std::string webSocketKey;
  std::string webSocketVersion;
  std::string webSocketProtocols;
  std::string authorization;
  std::string accept;
  std::string body;

  void Clear();
  Preconditions GetPreconditions() const { return {hasIfMatch ? std::optional<std::string_view>{ifMatch} : std::nullopt, ifNoneMatch}; }
};

}  // namespace zuva::serve
