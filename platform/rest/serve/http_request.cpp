#include "serve/http_request.h"

namespace zuva::serve {

void HttpRequest::Clear() {
  method = HttpMethod::kOther;
  keepAlive = upgrade = expectsContinue = hasIfMatch = false;
  version = 11;
  hostCount = 0;
  for (auto* text : {&target, &host, &origin, &contentType, &ifMatch, &ifNoneMatch, &requestedMethod, &webSocketKey, &webSocketVersion,
                     &webSocketProtocols, &authorization, &accept, &body})
    text->clear();
}

}  // namespace zuva::serve
