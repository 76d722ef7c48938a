#include "serve/documents.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <system_error>
#include <utility>

#include <sys/stat.h>
#include <boost/url/pct_string_view.hpp>

#include "serve/config.h"
#include "serve/staging.h"
#include "serve/text.h"

namespace zuva::serve {
namespace {

namespace fs = std::filesystem;

struct TypeRow {
  std::string_view extension, type;
};
constexpr std::array<TypeRow, 18> kTypes{{
    {".css", "text/css; charset=utf-8"},
    {".gif", "image/gif"},
    {".htm", "text/html; charset=utf-8"},
    {".html", "text/html; charset=utf-8"},
    {".ico", "image/vnd.microsoft.icon"},
    {".jpeg", "image/jpeg"},
    {".jpg", "image/jpeg"},
    {".js", "text/javascript; charset=utf-8"},
    {".json", "application/json"},
    {".map", "application/json"},
    {".mjs", "text/javascript; charset=utf-8"},
    {".pdf", "application/pdf"},
    {".png", "image/png"},
    {".svg", "image/svg+xml"},
    {".txt", "text/plain; charset=utf-8"},
    {".wasm", "application/wasm"},
    {".webp", "image/webp"},
    {".woff2", "font/woff2"},
}};

std::string_view TypeOf(const std::string& place) {
  const auto extension = LowerCase(fs::path{place}.extension().string());
  const auto* const row = std::find_if(kTypes.begin(), kTypes.end(), [&](const TypeRow& r) { return r.extension == extension; });
  return row == kTypes.end() ? "application/octet-stream" : row->type;
}

/// Another one for each change of the file, without a look into it.
std::string EtagOf(const struct stat& status) {
  std::string tag = "\"";
  for (const auto number : {static_cast<std::uint64_t>(status.st_ino), static_cast<std::uint64_t>(status.st_size),
                            static_cast<std::uint64_t>(status.st_ctim.tv_sec), static_cast<std::uint64_t>(status.st_ctim.tv_nsec)}) {
    std::array<char, 16> digits;
    const char* const begin = digits.data();
    const char* const end = std::to_chars(digits.begin(), digits.end(), number, 16).ptr;
    if (tag.size() > 1) tag += '-';
    tag.append(begin, end);
  }
  return tag + '"';
}

/// The weight that an `Accept` field gives to a type: that of its most precise range.
double WeightOf(std::string_view accept, std::string_view type) {
  const auto all = std::string{type.substr(0, type.find('/') + 1)} + '*';
  int precision = 0;
  double weight = 0;
  for (std::string_view item; NextItem(accept, item);) {
    std::string_view range;
    NextItem(item, range, ';');
    const int fits = EqualsIgnoringCase(range, type) ? 3 : EqualsIgnoringCase(range, all) ? 2 : range == "*/*" ? 1 : 0;
    if (fits <= precision) continue;
    precision = fits;
    weight = 1;
    for (std::string_view parameter; NextItem(item, parameter, ';');) {
      if (EqualsIgnoringCase(parameter.substr(0, 2), "q=")) weight = std::strtod(std::string{parameter.substr(2)}.c_str(), nullptr);
    }
  }
  return weight;
}

}  // namespace

bool DocumentPieces::Begin(std::shared_ptr<const Document> document) {
  document_ = std::move(document);
  piece_ = std::vector<char>{};  // a connection at rest keeps no room
  end_ = 0;
  return !HasMore() || Next();
}

bool DocumentPieces::Next() {
  piece_.resize(static_cast<std::size_t>(std::min<std::uint64_t>(kMostBytes, document_->size - end_)));
  const auto begin = std::exchange(end_, end_ + piece_.size());
  return document_->file.ReadAt(begin, piece_.data(), piece_.size());
}

Documents::Documents(const std::string& root) {
  std::error_code error;
  root_ = fs::canonical(Staged(root), error).string();
  if (!error && !fs::is_directory(root_, error) && !error) error = std::make_error_code(std::errc::not_a_directory);
  if (error) throw ConfigError{"documentRoot: cannot use " + root + ": " + error.message()};
  if (!root_.ends_with('/')) root_ += '/';
}

std::shared_ptr<const Document> Documents::Find(std::string_view requestPath) const {
  const auto path = PathOf(requestPath);
  if (path.empty()) return nullptr;
  auto file = OpenBelow(root_, path);
  struct stat status {};
  if (!file || ::fstat(file.Descriptor(), &status) != 0 || !S_ISREG(status.st_mode)) return nullptr;
  auto document = std::make_shared<Document>(std::move(file), static_cast<std::uint64_t>(status.st_size));
  document->etag = EtagOf(status);
  document->head.append("HTTP/1.1 200 OK\r\nContent-Type: ").append(TypeOf(path));
  document->head.append("\r\nContent-Length: ").append(std::to_string(document->size));
  document->head.append("\r\nETag: ").append(document->etag);
  document->head.append("\r\nCache-Control: no-cache\r\nX-Content-Type-Options: nosniff\r\n");
  return document;
}

bool Documents::PrefersHtml(std::string_view accept) {
  return WeightOf(accept, "text/html") > WeightOf(accept, "application/json");
}

/// The path relative to the root; empty if it is none, or one that is not served.
std::string Documents::PathOf(std::string_view requestPath) {
  const auto encoded = boost::urls::make_pct_string_view(boost::urls::string_view{requestPath.data(), requestPath.size()});
  if (!encoded || !requestPath.starts_with('/')) return {};
  std::string path = encoded->decode();
  if (path.find('\0') != std::string::npos) return {};
  for (std::size_t begin = 1; begin <= path.size();) {
    const auto end = std::min(path.find('/', begin), path.size());
    if (end == begin || path[begin] == '.') return {};  // an empty segment is another path; "..", and what is hidden
    begin = end + 1;
  }
  return path.substr(1);
}

}  // namespace zuva::serve
