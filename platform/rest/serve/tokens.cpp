#include "serve/tokens.h"

#include <openssl/crypto.h>
#include <openssl/sha.h>

#include "serve/text.h"

namespace zuva::serve {
namespace {

constexpr std::string_view kScheme = "bearer ";
constexpr std::string_view kSubprotocol = "bearer.";

}  // namespace

Tokens::Tokens(const Config& config) {
  for (const auto& token : config.tokens) known_.push_back({DigestOf(token.text), token.write});
}

Rights Tokens::RightsOf(const HttpRequest& request) const {
  if (known_.empty()) return Rights::kWrite;
  const std::string_view authorization = request.authorization;
  if (EqualsIgnoringCase(authorization.substr(0, kScheme.size()), kScheme)) return RightsOf(Trim(authorization.substr(kScheme.size())));
  if (!authorization.empty() || !request.upgrade) return Rights::kNone;
  const auto subprotocol = SubprotocolOf(request.webSocketProtocols);
  return subprotocol.empty() ? Rights::kNone : RightsOf(subprotocol.substr(kSubprotocol.size()));
}

std::string_view Tokens::SubprotocolOf(std::string_view list) {
  std::string_view item;
  while (NextItem(list, item)) {
    if (item.starts_with(kSubprotocol)) return item;
  }
  return {};
}

Tokens::Digest Tokens::DigestOf(std::string_view token) {
  Digest digest;
  SHA256(reinterpret_cast<const unsigned char*>(token.data()), token.size(), digest.data());
  return digest;
}

/// Looks at every token in full and at digests of one length, so that the time tells nothing of how near a guess is.
Rights Tokens::RightsOf(std::string_view token) const {
  const auto digest = DigestOf(token);
  auto rights = Rights::kNone;
  for (const auto& known : known_) {
    if (CRYPTO_memcmp(digest.data(), known.digest.data(), digest.size()) == 0) rights = known.write ? Rights::kWrite : Rights::kRead;
  }
  return rights;
}

}  // namespace zuva::serve
