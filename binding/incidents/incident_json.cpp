#include "binding/incidents/incident_json.h"

namespace qe::com::runtime {
namespace {

using xr::com::json::Json_text;

void put(Json_text& json, std::string_view key, std::string_view text) {
  json.key(key);
  json.value(text);
}

void put_instance(Json_text& json, std::string_view instance) {
  json.begin_object();
  put(json, "1_id", "Instance_id");
  put(json, "2_string", instance);
  json.end_object();
}

}  // namespace

void to_json(Json_text& json, const Service_id& service) {
  json.begin_object();
  put(json, "1_id", "Service_id");
  // Only the key of a literal has a number, on purpose.
  put(json, service.literal ? "2_char const*" : "string", service.name);
  json.end_object();
}

void to_json(Json_text& json, const Instance_id& instance) {
  put_instance(json, instance.value());
}

void to_json(Json_text& json, const Service_handle& handle) {
  json.begin_object();
  put(json, "1_id", "Service_handle");
  json.key("2_service_id");
  to_json(json, handle.service);
  json.key("3_instance_id");
  put_instance(json, handle.instance);
  json.end_object();
}

}  // namespace qe::com::runtime

namespace xr::com::cpp_binding::log::detail {

void put_identity(json::Json_text& json, std::string_view name, const Identity& identity) {
  put_text(json, "1_id", name);
  json.key("2_service_id");
  to_json(json, identity.service);
  json.key("3_instance_id");
  to_json(json, qe::com::runtime::Instance_id{std::string{identity.instance}});
}

void put_number(json::Json_text& json, std::string_view key, std::int64_t number) {
  json.key(key);
  json.value(number);
}

void put_flag(json::Json_text& json, std::string_view key, bool flag) {
  json.key(key);
  json.value(flag);
}

void put_text(json::Json_text& json, std::string_view key, std::string_view text) {
  json.key(key);
  json.value(text);
}

void put_handles(json::Json_text& json, std::string_view key, std::span<const qe::com::runtime::Service_handle> handles) {
  json.key(key);
  json.begin_array();
  for (const auto& handle : handles) to_json(json, handle);
  json.end_array();
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
