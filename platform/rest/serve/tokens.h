#pragma once

#include <array>
#include <cstdint>
#include <string_view>
#include <vector>

#include "serve/config.h"
#include "serve/http_request.h"

namespace zuva::serve {

/// What the bearer of a token that is not for writing reads when it writes all the same.
inline constexpr std::string_view kReadOnly = "This token is for reading only";

/// What the bearer of a token may do.
enum class Rights : std::uint8_t { kNone, kRead, kWrite };

/// Bearer tokens (RFC 6750). A client shows one in `Authorization`, a page's WebSocket as the subprotocol `bearer.<token>`, since it can
/// set no other field. Any thread.
class Tokens {
 public:
  explicit Tokens(const Config& config);

  /// Without tokens in the configuration everybody may write.
  Rights RightsOf(const HttpRequest& request) const;
  bool AreNeeded() const { return !known_.empty(); }
  /// The item of a list of subprotocols that shows a token, as it stands there; empty if there is none.
  static std::string_view SubprotocolOf(std::string_view list);

 private:
  using Digest = std::array<unsigned char, 32>;
  struct Known {
    Digest digest;
    bool write;
  };
  static Digest DigestOf(std::string_view token);
  Rights RightsOf(std::string_view token) const;

  std::vector<Known> known_;
};

}  // namespace zuva::serve
