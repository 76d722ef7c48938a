#include "binding/serialization/json_serializer.h"

#include <nlohmann/json.hpp>

namespace xr::com::json::serialization {

namespace detail {

void put(nlohmann::ordered_json& to, bool value) {
  to = value;
}
void put(nlohmann::ordered_json& to, std::uint64_t value) {
  to = value;
}
void put(nlohmann::ordered_json& to, std::int64_t value) {
  to = value;
}
void put(nlohmann::ordered_json& to, double value) {
  to = value;
}
void put(nlohmann::ordered_json& to, std::string_view value) {
  to = value;
}

void put(nlohmann::ordered_json& to, std::span<const unsigned char> value) {
  to = nlohmann::ordered_json::array();
  for (const auto byte : value) to.push_back(byte);
}

void put_array(nlohmann::ordered_json& to) {
  to = nlohmann::ordered_json::array();
}

nlohmann::ordered_json& append(nlohmann::ordered_json& to) {
  return to.emplace_back();
}

}  // namespace detail

Json_serializer::Json_serializer(nlohmann::ordered_json& to) : to_{to} {
  to_ = nlohmann::ordered_json::object();
}

nlohmann::ordered_json& Json_serializer::next_value(someip::serialization::Structure_tag tag) {
  const auto number = std::to_string(number_);
  to_[number + "_1WireType"] = static_cast<unsigned>(tag.wire_type());
  to_[number + "_2DataID"] = tag.data_id();
  return next_value();
}

nlohmann::ordered_json& Json_serializer::next_value() {
  return to_[std::to_string(number_++) + "_3"];
}

void Payload_data::write_argument(nlohmann::ordered_json& json) const {
  write(json["2_data"], data);
}

}  // namespace xr::com::json::serialization
