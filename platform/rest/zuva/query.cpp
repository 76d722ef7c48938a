#include "zuva/query.h"

#include <algorithm>
#include <boost/system/error_code.hpp>
#include <boost/url/params_encoded_view.hpp>
#include <boost/url/parse_query.hpp>
#include <utility>

#include "ara/rest/serialize/json_writer.h"

namespace zuva {
namespace {

bool IsScalar(ogm::Kind kind) {
  return kind != ogm::Kind::Object && kind != ogm::Kind::Array;
}

bool Holds(const ogm::Object& tree, const Query::Filter& filter) {
  const auto* const field = tree.Find(filter.name);
  if (!field || !field->HasValue()) return false;
  const auto& value = field->GetValue();
  if (value.GetType() == ogm::Kind::String) return static_cast<const ogm::String&>(value).GetValue() == filter.value;
  return IsScalar(value.GetType()) && ara::rest::serialize::ToText(value) == filter.value;
}

void AppendNames(std::vector<std::string>& names, std::string_view list) {
  while (!list.empty()) {
    const auto end = list.find(',');
    if (end != 0) names.emplace_back(list.substr(0, end));
    list.remove_prefix(end == std::string_view::npos ? list.size() : end + 1);
  }
}

}  // namespace

bool Query::Accepts(const ogm::Object& tree) const {
  return std::all_of(filters.begin(), filters.end(), [&](const Filter& filter) { return Holds(tree, filter); });
}

void Query::WriteTo(std::string& out, const ogm::Object& tree) const {
  if (!projected) return ara::rest::serialize::Write(out, tree);
  char separator = '{';
  for (const auto& field : tree) {
    const auto& name = field.GetName();
    const bool stays = name == "id" || name == "uri" || std::find(fields.begin(), fields.end(), name) != fields.end();
    if (!stays || !field.HasValue()) continue;
    out += std::exchange(separator, ',');
    ara::rest::serialize::WriteString(out, name);
    out += ':';
    ara::rest::serialize::Write(out, field.GetValue());
  }
  out += separator == '{' ? "{}" : "}";
}

boost::system::result<Target> ParseTarget(std::string_view text) {
  if (text.find('#') != std::string_view::npos) return make_error_code(boost::system::errc::invalid_argument);  // stays with the client
  const auto mark = text.find('?');
  if (mark == std::string_view::npos) return Target{text, {}};
  auto query = ParseQuery(text.substr(mark + 1));
  if (!query) return query.error();
  return Target{text.substr(0, mark), std::move(*query)};
}

boost::system::result<Query> ParseQuery(std::string_view text) {
  const auto parameters = boost::urls::parse_query(boost::urls::string_view{text.data(), text.size()});
  if (!parameters) return parameters.error();
  Query query;
  for (const auto& parameter : *parameters) {
    auto name = parameter.key.decode();
    auto value = parameter.value.decode();
    if (name == "fields") {
      query.projected = true;
      AppendNames(query.fields, value);
    } else if (name == "identity" && value.empty()) {
      query.identity = true;
    } else if (name == "specification" && value.empty()) {
      query.specification = true;
    } else if (!name.empty() || parameter.has_value) {
      query.filters.push_back({std::move(name), std::move(value)});
    }
    if (query.filters.size() + query.fields.size() > Query::kMostTerms) return make_error_code(boost::system::errc::argument_list_too_long);
  }
  return query;
}

}  // namespace zuva
