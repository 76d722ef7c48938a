#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include <boost/asio/ip/address.hpp>

#include "serve/config.h"

namespace zuva::serve {

/// What a `Host` field, or the authority of a target, says.
enum class HostKind : std::uint8_t {
  kInvalid,  ///< no host (RFC 3986 section 3.2.2), or no port behind it
  kForeign,  ///< one that this server does not go by; the empty one is
  kOwn
};

/// Who may speak to this server under which name. Browsers are kept from reaching it through a foreign name (rebinding) or from a
/// foreign page. Any thread.
class HostRules {
 public:
  explicit HostRules(const Config& config);

  /// The server's own names are its listeners' addresses, that of the connection, `localhost` and those that the configuration allows. The
  /// port's number is not looked at, since it may be another one outside.
  HostKind KindOf(std::string_view host, const boost::asio::ip::address& local) const;
  /// Whether the page of this `Origin` comes from this very server, as the client knows it by `host`, or from one that is allowed.
  bool AllowsOrigin(std::string_view origin, std::string_view host) const { return IsSameOrigin(origin, host) || IsListed(origin); }
  /// Whether the configuration names this `Origin`.
  bool IsListed(std::string_view origin) const;
  /// What URIs of this server begin with: "http://" or "https://".
  std::string_view Scheme() const { return scheme_; }
  bool HasListedOrigins() const { return !origins_.empty(); }

 private:
  bool IsSameOrigin(std::string_view origin, std::string_view host) const;

  std::vector<std::string> origins_;
  std::vector<std::string> hosts_;
  std::vector<boost::asio::ip::address> addresses_;
  bool allHosts_ = false;
  std::string_view scheme_;       // with its colon and slashes
  std::string_view defaultPort_;  // what the scheme stands for
};

}  // namespace zuva::serve
