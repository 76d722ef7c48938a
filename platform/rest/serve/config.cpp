#include "serve/config.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <filesystem>
#include <fstream>
#include <functional>
#include <iterator>
#include <limits>
#include <set>
#include <system_error>
#include <utility>

#include <boost/asio/ip/address.hpp>
#include <boost/url/parse.hpp>
#include <nlohmann/json.hpp>

#include "serve/staging.h"
#include "serve/text.h"

namespace zuva::serve {
namespace {

using nlohmann::json;

[[noreturn]] void Refuse(const std::string& key, const std::string& reason) {
  throw ConfigError{key + ": " + reason};
}

/// Walks the members of an object: each must be one of the known keys.
using Readers = std::vector<std::pair<std::string_view, std::function<void(const std::string& key, const json& value)>>>;

void ReadObject(const std::string& where, const json& object, const Readers& readers) {
  if (!object.is_object()) Refuse(where.empty() ? "the file" : where, "must be an object");
  for (const auto& [name, value] : object.items()) {
    std::string key = where;
    if (!key.empty()) key += '.';
    key += name;
    const auto known = std::find_if(readers.begin(), readers.end(), [&name = name](const auto& reader) { return reader.first == name; });
    if (known == readers.end()) Refuse(key, "unknown key");
    known->second(key, value);
  }
}

std::size_t Number(const std::string& key, const json& value, std::size_t minimum, std::size_t maximum) {
  if (value.is_number_unsigned()) {
    const auto number = value.get<std::uint64_t>();
    if (number >= minimum && number <= maximum) return static_cast<std::size_t>(number);
  }
  Refuse(key, "must be a whole number from " + std::to_string(minimum) + " to " + std::to_string(maximum));
}

std::string Text(const std::string& key, const json& value) {
  if (!value.is_string() || value.get_ref<const std::string&>().empty()) Refuse(key, "must be a text");
  return value.get<std::string>();
}

template <class Read>
void ReadArray(const std::string& key, const json& value, Read&& read) {
  if (!value.is_array()) Refuse(key, "must be an array");
  for (std::size_t i = 0; i < value.size(); ++i) read(key + "[" + std::to_string(i) + "]", value[i]);
}

ListenAddress ReadListenAddress(const std::string& key, const json& value) {
  ListenAddress result;
  bool hasPort = false;
  ReadObject(key, value,
             {{"address",
               [&](const std::string& k, const json& v) {
                 result.address = Text(k, v);
                 boost::system::error_code error;
                 boost::asio::ip::make_address(result.address, error);
                 if (error) Refuse(k, "is no IP address: " + result.address);
               }},
              {"port", [&](const std::string& k, const json& v) {
                 result.port = static_cast<std::uint16_t>(Number(k, v, 0, std::numeric_limits<std::uint16_t>::max()));
                 hasPort = true;
               }}});
  if (result.address.empty()) Refuse(key + ".address", "is missing");
  if (!hasPort) Refuse(key + ".port", "is missing");
  return result;
}

struct LimitRow {
  std::string_view name;
  std::size_t Limits::*member;
  std::size_t minimum, maximum;
};
constexpr std::size_t kDay = 86400;
constexpr std::size_t kMega = std::size_t{1} << 20U;
constexpr std::array<LimitRow, 8> kLimits{{
    {"connections", &Limits::connections, 1, 65536},
    {"bodyBytes", &Limits::bodyBytes, 1, 64 * kMega},
    {"headerBytes", &Limits::headerBytes, 64, kMega},
    {"idleSeconds", &Limits::idleSeconds, 1, kDay},
    {"requestSeconds", &Limits::requestSeconds, 1, kDay},
    {"queuedRequests", &Limits::queuedRequests, 0, 65536},
    {"pendingBytesPerClient", &Limits::pendingBytesPerClient, 1, 1024 * kMega},
    {"subscriptionsPerClient", &Limits::subscriptionsPerClient, 0, 65536},
}};

Limits ReadLimits(const std::string& key, const json& value) {
  Limits limits;
  Readers readers;
  for (const auto& row : kLimits) {
    readers.emplace_back(
        row.name, [&limits, &row](const std::string& k, const json& v) { limits.*row.member = Number(k, v, row.minimum, row.maximum); });
  }
  ReadObject(key, value, readers);
  return limits;
}

std::string ReadOrigin(const std::string& key, const json& value) {
  std::string origin = LowerCase(Text(key, value));
  const auto scheme = origin.find("://");
  if (scheme == 0 || scheme == std::string::npos || origin.find('/', scheme + 3) != std::string::npos || scheme + 3 == origin.size()) {
    Refuse(key, "must read scheme://host or scheme://host:port");
  }
  return origin;
}

RegistryAddress ReadRegistryUrl(const std::string& key, const json& value) {
  const auto text = Text(key, value);
  const auto url = boost::urls::parse_uri(text);
  if (!url || url->scheme_id() != boost::urls::scheme::http || url->encoded_host().empty() || url->has_userinfo() || url->has_query() ||
      url->has_fragment()) {
    Refuse(key, "must read http://host or http://host:port, and may have a path");
  }
  RegistryAddress address;
  address.authority = std::string{url->encoded_host_and_port()};
  address.host = url->host_address();
  if (url->has_port()) address.port = url->port_number();
  address.path = std::string{url->encoded_path()};
  while (address.path.ends_with('/')) address.path.pop_back();
  return address;
}

RegistryAddress ReadRegistry(const std::string& key, const json& value) {
  std::optional<RegistryAddress> address;
  ReadObject(key, value, {{"url", [&](const std::string& k, const json& v) { address = ReadRegistryUrl(k, v); }}});
  if (!address) Refuse(key + ".url", "is missing");
  return *address;
}

std::string ReadPath(const std::string& key, const json& value) {
  auto path = Text(key, value);
  if (!path.starts_with('/')) Refuse(key, "must be an absolute path");
  return path;
}

TlsFiles ReadTls(const std::string& key, const json& value) {
  TlsFiles files;
  ReadObject(key, value,
             {{"certificate", [&](const std::string& k, const json& v) { files.certificate = ReadPath(k, v); }},
              {"key", [&](const std::string& k, const json& v) { files.key = ReadPath(k, v); }}});
  if (files.certificate.empty()) Refuse(key + ".certificate", "is missing");
  if (files.key.empty()) Refuse(key + ".key", "is missing");
  return files;
}

/// A token as a client can send it (RFC 6750 section 2.1).
std::string ReadTokenText(const std::string& key, const json& value) {
  constexpr std::string_view kCharacters = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789-._~+/";
  auto text = Text(key, value);
  const auto end = text.find_first_not_of(kCharacters);
  if (end == 0 || (end != std::string::npos && text.find_first_not_of('=', end) != std::string::npos)) {
    Refuse(key, "must consist of letters, digits and -._~+/, with = at its end only");
  }
  return text;
}

Token ReadToken(const std::string& key, const json& value) {
  Token token;
  ReadObject(key, value,
             {{"token", [&](const std::string& k, const json& v) { token.text = ReadTokenText(k, v); }},
              {"write", [&](const std::string& k, const json& v) {
                 if (!v.is_boolean()) Refuse(k, "must be true or false");
                 token.write = v.get<bool>();
               }}});
  if (token.text.empty()) Refuse(key + ".token", "is missing");
  return token;
}

void ReadTokens(std::vector<Token>& tokens, const std::string& key, const json& value) {
  ReadArray(key, value, [&](const std::string& k, const json& v) {
    auto token = ReadToken(k, v);
    if (std::any_of(tokens.begin(), tokens.end(), [&](const Token& t) { return t.text == token.text; })) Refuse(k, "is given twice");
    tokens.push_back(std::move(token));
  });
  if (tokens.empty()) Refuse(key, "must not be empty");
}

/// A token that everybody on the way can read guards nothing.
void RefuseOpenTokens(const Config& config) {
  if (config.tokens.empty() || config.tls) return;
  for (const auto& listen : config.listen) {
    if (!boost::asio::ip::make_address(listen.address).is_loopback()) {
      Refuse("tokens", "need tls, since " + listen.address + " is not a loopback address");
    }
  }
}

/// Parses and refuses repeated keys, which the parser itself lets pass.
json ParseStrict(std::string_view text) {
  std::vector<std::set<std::string>> open;
  const auto check = [&open](int, json::parse_event_t event, json& parsed) {
    if (event == json::parse_event_t::object_start) open.emplace_back();
    if (event == json::parse_event_t::object_end) open.pop_back();
    if (event == json::parse_event_t::key && !open.back().insert(parsed.get<std::string>()).second) {
      Refuse(parsed.get<std::string>(), "is given twice");
    }
    return true;
  };
  try {
    return json::parse(text, check);
  } catch (const json::exception& e) {
    throw ConfigError{e.what()};
  }
}

}  // namespace

Config ParseConfig(std::string_view text) {
  Config config;
  const auto allowed = [](std::vector<std::string>& list, auto read) {
    return [&list, read](const std::string& key, const json& value) {
      ReadArray(key, value, [&](const std::string& k, const json& v) { list.push_back(read(k, v)); });
    };
  };
  ReadObject("", ParseStrict(text),
             {{"listen",
               [&](const std::string& key, const json& value) {
                 ReadArray(key, value, [&](const std::string& k, const json& v) { config.listen.push_back(ReadListenAddress(k, v)); });
                 if (config.listen.empty()) Refuse(key, "must not be empty");
               }},
              {"requestThreads", [&](const std::string& key, const json& value) { config.requestThreads = Number(key, value, 1, 256); }},
              {"limits", [&](const std::string& key, const json& value) { config.limits = ReadLimits(key, value); }},
              {"allowedOrigins", allowed(config.allowedOrigins, ReadOrigin)},
              {"allowedHosts", allowed(config.allowedHosts, [](const std::string& k, const json& v) { return LowerCase(Text(k, v)); })},
              {"tls", [&](const std::string& key, const json& value) { config.tls = ReadTls(key, value); }},
              {"tokens", [&](const std::string& key, const json& value) { ReadTokens(config.tokens, key, value); }},
              {"registry", [&](const std::string& key, const json& value) { config.registry = ReadRegistry(key, value); }},
              {"documentRoot", [&](const std::string& key, const json& value) { config.documentRoot = ReadPath(key, value); }}});
  if (config.listen.empty()) Refuse("listen", "is missing");
  RefuseOpenTokens(config);
  return config;
}

Config ReadConfig(const std::string& path) {
  const std::string place = Staged(path);
  std::error_code error;
  const bool regular = std::filesystem::is_regular_file(place, error);  // a pipe, say, would block the start
  if (error) throw ConfigError{"cannot be opened: " + error.message()};
  if (!regular) throw ConfigError{"is not a regular file"};
  std::ifstream file{place, std::ios::binary};
  if (!file) throw ConfigError{"cannot be opened: " + std::generic_category().message(errno)};
  const std::string text{std::istreambuf_iterator<char>{file}, {}};
  if (file.bad()) throw ConfigError{"cannot be read"};
  return ParseConfig(text);
}

}  // namespace zuva::serve
