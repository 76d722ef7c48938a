#include "serve/host_rules.h"

#include <algorithm>
#include <optional>

#include "serve/text.h"

namespace zuva::serve {
namespace {

namespace ip = boost::asio::ip;

/// host[:port] taken apart; the host of a literal IPv6 address without its brackets.
struct Authority {
  std::string host;
  std::string_view port;  // may be empty
};

constexpr std::string_view kDigits = "0123456789";
constexpr std::string_view kHexDigits = "0123456789abcdef";
constexpr std::size_t kLongestPort = 5;

/// Whether this is a name as a URI may have it, in lower case (RFC 3986 section 3.2.2).
bool IsName(std::string_view text) {
  constexpr std::string_view kPlain = "abcdefghijklmnopqrstuvwxyz0123456789-._~!$&'()*+,;=";
  for (; !text.empty(); text.remove_prefix(1)) {
    if (kPlain.find(text.front()) != std::string_view::npos) continue;
    const bool isEscape =
        text.front() == '%' && text.size() > 2 && text.substr(1, 2).find_first_not_of(kHexDigits) == std::string_view::npos;
    if (!isEscape) return false;
    text.remove_prefix(2);
  }
  return true;
}

bool IsAddress6(std::string_view text) {
  boost::system::error_code error;
  ip::make_address_v6(std::string{text}, error);
  return !error;
}

std::optional<Authority> Split(std::string_view text) {
  Authority result;
  std::string_view rest;
  if (text.starts_with('[')) {
    const auto end = text.find(']');
    if (end == std::string_view::npos) return std::nullopt;
    result.host = LowerCase(text.substr(1, end - 1));
    rest = text.substr(end + 1);
    if (!IsAddress6(result.host)) return std::nullopt;
  } else {
    const auto end = std::min(text.find(':'), text.size());
    result.host = LowerCase(text.substr(0, end));
    rest = text.substr(end);
    if (result.host.empty() || !IsName(result.host)) return std::nullopt;
  }
  if (rest.empty()) return result;
  if (rest.front() != ':') return std::nullopt;
  rest.remove_prefix(1);
  if (rest.size() > kLongestPort || rest.find_first_not_of(kDigits) != std::string_view::npos) return std::nullopt;
  if (!rest.empty()) result.port = rest;
  return result;
}

/// An IPv4 client of an IPv6 socket has an address that only looks like IPv6.
ip::address Plain(const ip::address& address) {
  if (address.is_v6() && address.to_v6().is_v4_mapped()) return ip::make_address_v4(ip::v4_mapped, address.to_v6());
  return address;
}

}  // namespace

HostRules::HostRules(const Config& config)
    : origins_{config.allowedOrigins},
      hosts_{config.allowedHosts},
      scheme_{config.tls ? "https://" : "http://"},
      defaultPort_{config.tls ? "443" : "80"} {
  for (const auto& listen : config.listen) addresses_.push_back(ip::make_address(listen.address));
  allHosts_ = std::find(hosts_.begin(), hosts_.end(), "*") != hosts_.end();
}

HostKind HostRules::KindOf(std::string_view host, const ip::address& local) const {
  if (host.empty()) return HostKind::kForeign;
  const auto authority = Split(host);
  if (!authority) return HostKind::kInvalid;
  if (allHosts_ || authority->host == "localhost") return HostKind::kOwn;
  if (std::find(hosts_.begin(), hosts_.end(), authority->host) != hosts_.end()) return HostKind::kOwn;
  boost::system::error_code error;
  const auto address = ip::make_address(authority->host, error);
  if (error) return HostKind::kForeign;
  const bool isOwn = address == Plain(local) || std::find(addresses_.begin(), addresses_.end(), address) != addresses_.end();
  return isOwn ? HostKind::kOwn : HostKind::kForeign;
}

bool HostRules::IsListed(std::string_view origin) const {
  return std::any_of(origins_.begin(), origins_.end(), [&](const std::string& listed) { return EqualsIgnoringCase(origin, listed); });
}

bool HostRules::IsSameOrigin(std::string_view origin, std::string_view host) const {
  if (!EqualsIgnoringCase(origin.substr(0, scheme_.size()), scheme_)) return false;
  const auto page = Split(origin.substr(scheme_.size()));
  const auto server = Split(host);
  const auto portOf = [this](const Authority& authority) { return authority.port.empty() ? defaultPort_ : authority.port; };
  return page && server && page->host == server->host && portOf(*page) == portOf(*server);
}

}  // namespace zuva::serve
