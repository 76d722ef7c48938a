#include "serve/announcement.h"

#include <boost/url/parse.hpp>
#include <boost/url/url.hpp>

#include "ara/rest/serialize/json_writer.h"

namespace zuva::serve {
namespace {

using ara::rest::serialize::WriteString;

/// The URI with the scheme and the port of the server's listener put in where it has none, up to its path.
std::string Completed(const std::string& uri, const std::vector<std::string>& own) {
  const auto parsed = boost::urls::parse_uri_reference(uri);
  if (!parsed || own.empty()) return uri;
  boost::urls::url result{*parsed};
  const boost::urls::url listener{own.front()};
  if (!result.has_scheme()) result.set_scheme(listener.scheme());
  if (!result.has_port() && result.has_authority()) result.set_port_number(listener.port_number());
  result.set_encoded_path("");
  return std::string{result.buffer()};
}

void WriteList(std::string& out, const std::vector<std::string>& texts) {
  out += '[';
  for (const auto& text : texts) {
    if (out.back() != '[') out += ',';
    WriteString(out, text);
  }
  out += ']';
}

}  // namespace

std::string AnnouncementOf(const ServerService& service, const std::vector<std::string>& uris, const std::vector<std::string>& own) {
  const auto path = service.GetUri().ToString();
  std::vector<std::string> places;
  places.reserve(uris.size() + own.size());
  for (const auto& uri : uris) places.push_back(Completed(uri, own) + path);
  if (uris.empty()) {
    for (const auto& address : own) places.push_back(address + path);
  }
  std::string out = R"({"name":)";
  WriteString(out, service.GetName());
  out += R"(,"id":)";
  WriteString(out, service.GetUuid().ToString());
  out += R"(,"uris":)";
  WriteList(out, places);
  out += R"(,"versions":)";
  WriteList(out, service.GetVersions());
  out += R"(,"description":)";
  WriteString(out, service.GetDescription());
  return out + '}';
}

}  // namespace zuva::serve
