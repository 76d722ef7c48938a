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

bool NamesEtag(std::string_view field, std::string_view etag, EtagComparison comparison) noexcept {
  constexpr std::string_view kWeak = "W/";
  const bool weakCounts = comparison == EtagComparison::kWeak;
  const bool isWeak = etag.starts_with(kWeak);
  if (isWeak) etag.remove_prefix(kWeak.size());
  const auto skip = [&](std::string_view characters) {
    const auto start = field.find_first_not_of(characters);
    field.remove_prefix(start == std::string_view::npos ? field.size() : start);
  };
  skip(" \t");
  if (field.starts_with('*')) return true;
  while (true) {
    skip(" \t,");
    const bool namesWeak = field.starts_with(kWeak);
    if (namesWeak) field.remove_prefix(kWeak.size());
    if (!field.starts_with('"')) return false;
    const auto end = field.find('"', 1);
    if (end == std::string_view::npos) return false;
    if (field.substr(0, end + 1) == etag && (weakCounts || !(isWeak || namesWeak))) return true;
    field.remove_prefix(end + 1);
  }
}

}  // namespace zuva
