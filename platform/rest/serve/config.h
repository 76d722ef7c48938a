#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace zuva::serve {

/// An address and port to listen on. The address is a valid IPv4 or IPv6 literal without brackets; port 0 means any free port.
struct ListenAddress {
  std::string address;
  std::uint16_t port = 0;
};

/// Where the registry of services is, as the parts of its URL.
struct RegistryAddress {
  std::string authority;  ///< host and, if given, port, as in the URL
  std::string host;       ///< a name, or an address without brackets
  std::uint16_t port = 80;
  std::string path;  ///< without a slash at its end; may be empty
};

/// Where the server's certificate, with those that lead to its root, and the key are, in PEM.
struct TlsFiles {
  std::string certificate;
  std::string key;
};

/// What a client shows to be let in; with `write` it may write as well.
struct Token {
  std::string text;
  bool write = false;
};

/// What one server and one client may cost. Sizes in bytes, times in whole seconds.
struct Limits {
  std::size_t connections = 1024;
  std::size_t bodyBytes = 65536;
  std::size_t headerBytes = 8192;
  std::size_t idleSeconds = 60;
  std::size_t requestSeconds = 10;
  std::size_t queuedRequests = 64;
  std::size_t pendingBytesPerClient = 1048576;
  std::size_t subscriptionsPerClient = 256;
};

/// The settings of the serving side, as its configuration file gives them.
struct Config {
  std::vector<ListenAddress> listen;
  std::size_t requestThreads = 10;
  Limits limits;
  std::vector<std::string> allowedOrigins;  ///< in lower case, as `scheme://host[:port]`
  std::optional<RegistryAddress> registry;
  std::vector<std::string> allowedHosts;  ///< in lower case, without port; `*` allows all
  std::optional<TlsFiles> tls;            ///< for all listeners
  std::vector<Token> tokens;              ///< none: everybody may read and write
  std::optional<std::string> documentRoot;
};

/// A configuration that cannot be used; the text names the key at fault and what is wrong with it.
class ConfigError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

/// Reads the file whose absolute path is taken below the directory in `ARA_ROOT`. Strict: throws `ConfigError` for a file that cannot be
/// read, for anything but JSON, and for an unknown, repeated or missing key or a value that is not allowed.
Config ReadConfig(const std::string& path);

/// The same for the text of such a file.
Config ParseConfig(std::string_view text);

}  // namespace zuva::serve
