#include "binding/serialization/json_serializer.h"

namespace xr::com::json::serialization {

void Json_serializer::put_tag(someip::serialization::Structure_tag tag) {
  const auto number = std::to_string(number_);
  to_.key(number + "_1WireType");
  to_.value(static_cast<std::uint64_t>(tag.wire_type()));
  to_.key(number + "_2DataID");
  to_.value(static_cast<std::uint64_t>(tag.data_id()));
}

void Json_serializer::put_key() {
  to_.key(std::to_string(number_++) + "_3");
}

void Payload_data::write_argument(Json_text& json) const {
  json.key("2_data");
  write(json, data);
}

}  // namespace xr::com::json::serialization
