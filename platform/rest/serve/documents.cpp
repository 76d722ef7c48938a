#include "serve/documents.h"

#include <algorithm>
#include <array>
#include <cstdlib>
#include <filesystem>
#include <optional>
#include <system_error>
#include <utility>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>
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

/// An open file, or none.
class File {
 public:
  explicit File(const std::string& place) : descriptor_{::open(place.c_str(), O_RDONLY | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK)} {}
  ~File() {
    if (descriptor_ >= 0) ::close(descriptor_);
  }
  File(const File&) = delete;
  File& operator=(const File&) = delete;

  std::optional<struct stat> Status() const {
    struct stat status {};
    if (descriptor_ < 0 || ::fstat(descriptor_, &status) != 0 || !S_ISREG(status.st_mode)) return std::nullopt;
    return status;
  }
  /// All of it; nothing if it is shorter than that by now.
  std::optional<std::string> Read(std::size_t size) const {
    std::string content(size, '\0');
    for (std::size_t have = 0; have < size;) {
      const auto got = ::read(descriptor_, content.data() + have, size - have);
      if (got <= 0) return std::nullopt;
      have += static_cast<std::size_t>(got);
    }
    return content;
  }

 private:
  int descriptor_;
};

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

Documents::Documents(const std::string& root) {
  std::error_code error;
  root_ = fs::canonical(Staged(root), error).string();
  if (!error && !fs::is_directory(root_, error) && !error) error = std::make_error_code(std::errc::not_a_directory);
  if (error) throw ConfigError{"documentRoot: cannot use " + root + ": " + error.message()};
  if (!root_.ends_with('/')) root_ += '/';
}

std::shared_ptr<const Rendered> Documents::Find(std::string_view requestPath) {
  const auto place = PlaceOf(requestPath);
  if (place.empty()) return nullptr;
  const File file{place};
  const auto status = file.Status();
  if (!status || static_cast<std::uint64_t>(status->st_size) > kMostBytes) return nullptr;
  const auto size = static_cast<std::size_t>(status->st_size);
  const Stamp stamp{status->st_dev, status->st_ino, size, status->st_mtim.tv_sec, status->st_mtim.tv_nsec};
  if (const auto kept = kept_.find(place); kept != kept_.end() && kept->second.stamp == stamp) return kept->second.document;
  auto content = file.Read(size);
  if (!content) return nullptr;
  return Keep(place, stamp, std::move(*content));
}

bool Documents::PrefersHtml(std::string_view accept) {
  return WeightOf(accept, "text/html") > WeightOf(accept, "application/json");
}

/// Where the file lies, links followed; empty if that is outside the root or the path is none.
std::string Documents::PlaceOf(std::string_view requestPath) const {
  const auto encoded = boost::urls::make_pct_string_view(boost::urls::string_view{requestPath.data(), requestPath.size()});
  if (!encoded || !requestPath.starts_with('/')) return {};
  const std::string path = encoded->decode();
  if (path.find('\0') != std::string::npos) return {};
  for (std::size_t begin = 1; begin <= path.size();) {
    const auto end = std::min(path.find('/', begin), path.size());
    if (end == begin || path[begin] == '.') return {};  // an empty segment is another path; "..", and what is hidden
    begin = end + 1;
  }
  std::error_code error;
  auto place = fs::canonical(root_ + path.substr(1), error).string();
  if (error || !place.starts_with(root_)) return {};
  return place;
}

std::shared_ptr<const Rendered> Documents::Keep(const std::string& place, const Stamp& stamp, std::string content) {
  auto document = std::make_shared<Rendered>();
  document->etag = MakeEtag(content);
  document->head.append("HTTP/1.1 200 OK\r\nContent-Type: ").append(TypeOf(place));
  document->head.append("\r\nContent-Length: ").append(std::to_string(content.size()));
  document->head.append("\r\nETag: ").append(document->etag);
  document->head.append("\r\nCache-Control: no-cache\r\nX-Content-Type-Options: nosniff\r\n");
  document->body = std::move(content);
  if (keptBytes_ + stamp.size > kMostBytes) {
    kept_.clear();
    keptBytes_ = 0;
  }
  auto& kept = kept_[place];
  if (kept.document) keptBytes_ -= kept.document->body.size();
  keptBytes_ += stamp.size;
  kept = {stamp, document};
  return document;
}

}  // namespace zuva::serve
