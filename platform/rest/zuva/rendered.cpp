#include "zuva/rendered.h"

#include <utility>

#include "ara/rest/serialize/json_writer.h"

namespace zuva {
namespace {

// FNV-1a, 64 bits.
std::uint64_t Hash(std::string_view text) noexcept {
  std::uint64_t hash = 0xCBF29CE484222325ULL;
  for (const char character : text) hash = (hash ^ static_cast<unsigned char>(character)) * 0x100000001B3ULL;
  return hash;
}

}  // namespace

std::shared_ptr<const Rendered> MakeRendered(std::uint64_t version, ara::rest::Pointer<ogm::Object> tree) {
  auto rendered = std::make_shared<Rendered>();
  rendered->version = version;
  rendered->body = ara::rest::serialize::ToText(*tree);
  rendered->etag = MakeEtag(rendered->body);
  rendered->tree = std::move(tree);
  return rendered;
}

std::shared_ptr<const Rendered> MakeRendered(std::uint64_t version, std::string body) {
  auto rendered = std::make_shared<Rendered>();
  rendered->version = version;
  rendered->etag = MakeEtag(body);
  rendered->body = std::move(body);
  return rendered;
}

std::string MakeEtag(std::string_view body) {
  constexpr char kDigits[] = "0123456789abcdef";
  const auto hash = Hash(body);
  std::string tag = "\"";
  for (int shift = 60; shift >= 0; shift -= 4) tag += kDigits[hash >> shift & 15];
  return tag += '"';
}

bool MatchesEtag(std::string_view ifNoneMatch, std::string_view etag) noexcept {
  const auto skip = [&](std::string_view characters) {
    const auto start = ifNoneMatch.find_first_not_of(characters);
    ifNoneMatch.remove_prefix(start == std::string_view::npos ? ifNoneMatch.size() : start);
  };
  skip(" \t");
  if (ifNoneMatch.starts_with('*')) return true;
  while (true) {
    skip(" \t,");
    if (ifNoneMatch.starts_with("W/")) ifNoneMatch.remove_prefix(2);
    if (!ifNoneMatch.starts_with('"')) return false;
    const auto end = ifNoneMatch.find('"', 1);
    if (end == std::string_view::npos) return false;
    if (ifNoneMatch.substr(0, end + 1) == etag) return true;
    ifNoneMatch.remove_prefix(end + 1);
  }
}

}  // namespace zuva
