#include "binding/incidents/incident_json.h"

#include <nlohmann/json.hpp>

#include <string>

namespace qe::com::runtime {
namespace {

nlohmann::ordered_json instance_json(std::string_view instance) {
  return {{"1_id", "Instance_id"}, {"2_string", instance}};
}

}  // namespace

void to_json(nlohmann::ordered_json& json, const Service_id& service) {
  // Only the key of a literal has a number, on purpose.
  json = {{"1_id", "Service_id"}, {service.literal ? "2_char const*" : "string", service.name}};
}

void to_json(nlohmann::ordered_json& json, const Instance_id& instance) {
  json = instance_json(instance.value());
}

void to_json(nlohmann::ordered_json& json, const Service_handle& handle) {
  json = {{"1_id", "Service_handle"}, {"2_service_id", handle.service}, {"3_instance_id", instance_json(handle.instance)}};
}

}  // namespace qe::com::runtime

namespace xr::com::cpp_binding::log::detail {

void put_identity(nlohmann::ordered_json& json, std::string_view name, const Identity& identity) {
  json["1_id"] = name;
  json["2_service_id"] = identity.service;
  json["3_instance_id"] = qe::com::runtime::Instance_id{std::string{identity.instance}};
}

void put_number(nlohmann::ordered_json& json, std::string_view key, std::int64_t number) {
  json[std::string{key}] = number;
}

void put_flag(nlohmann::ordered_json& json, std::string_view key, bool flag) {
  json[std::string{key}] = flag;
}

void put_text(nlohmann::ordered_json& json, std::string_view key, std::string_view text) {
  json[std::string{key}] = text;
}

void put_handles(nlohmann::ordered_json& json, std::string_view key, std::span<const qe::com::runtime::Service_handle> handles) {
  auto& list = json[std::string{key}] = nlohmann::ordered_json::array();
  for (const auto& handle : handles) list.push_back(handle);
}

std::string cut_to(std::string text, std::size_t limit) {
  if (text.size() <= limit) return text;
  constexpr std::string_view kCut = "\"cut\":true}";
  std::string open;     // what closes the objects and arrays around the place that is read, the outermost first
  std::string closers;  // the same for the last place that fits
  std::size_t end = 0;
  bool in_string = false;
  for (std::size_t i = 0; i + open.size() + kCut.size() <= limit; ++i) {
    const char character = text[i];
    if (in_string) {
      if (character == '\\') ++i;
      in_string = character != '"';
    } else if (character == ',') {
      end = i;
      closers = open;
    } else if (character == '{' || character == '[') {
      open += character == '{' ? '}' : ']';
    } else if (character == '}' || character == ']') {
      open.pop_back();
    } else {
      in_string = character == '"';
    }
  }
  if (end == 0) return "{\"cut\":true}";  // not even the first member fits
  text.resize(end);
  text.append(closers.rbegin(), closers.rend() - 1);  // the outermost stays open for the last member
  text += ',';
  return text += kCut;
}

}  // namespace xr::com::cpp_binding::log::detail
