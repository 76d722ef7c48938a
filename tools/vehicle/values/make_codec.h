#pragma once

#include "binding/serialization/serializer.h"
#include "tools/vehicle/values/field_codec.h"
#include "tools/vehicle/values/record_json.h"

#include <nlohmann/json.hpp>

namespace vehicle {

namespace codec {

/// Both services have these settings.
inline constexpr xr::com::someip::serialization::Serialization_properties kProperties{};

template <class Record>
Bytes Encoded(const std::vector<Record>& records) {
  Bytes payload;
  xr::com::someip::serialization::serialize(payload, records, kProperties);
  return payload;
}

template <class Record>
std::vector<Record> Decoded(const Bytes& payload) {
  return xr::com::someip::serialization::deserialize<Record>(payload, kProperties);
}

template <class Record>
Bytes FromJson(const nlohmann::json& records, const Place& place) {
  if (!records.is_array()) throw BadInput{place, "the value of a field is an array of records"};
  std::vector<Record> parsed;
  for (std::size_t i = 0; i < records.size(); ++i) parsed.push_back(RecordFromJson<Record>(records[i], place / i));
  return Encoded(parsed);
}

template <class Record>
nlohmann::json ToJson(const Bytes& payload) {
  auto records = nlohmann::json::array();
  for (const auto& record : Decoded<Record>(payload)) records.push_back(RecordToJson(record));
  return records;
}

/// The member that tells one record of a field from another.
template <class Record>
const auto* TypeOf(const Record& record) {
  if constexpr (requires { record.type; }) {
    return &record.type;
  } else if constexpr (requires { record.statisicsType; }) {
    return &record.statisicsType;
  } else if constexpr (requires { record.chargeModesType; }) {
    return &record.chargeModesType;
  } else {
    return static_cast<const qe::com::optional<int>*>(nullptr);  // none: such a field has one record
  }
}

template <class Record>
bool SameType(const Record& left, const Record& right) {
  const auto* leftType = TypeOf(left);
  return !leftType || *leftType == *TypeOf(right);
}

/// `target` with the present members of `source` in place of its own.
template <class Record>
Record Overwritten(const Record& target, const Record& source) {
  auto members = RecordToJson(target);
  members.update(RecordToJson(source));
  return RecordFromJson<Record>(members, Place{});
}

template <class Record>
Bytes Merged(const Bytes& held, const Bytes& posted) {
  auto records = Decoded<Record>(held);
  for (const auto& record : Decoded<Record>(posted)) {
    const auto same = std::find_if(records.begin(), records.end(), [&](const Record& other) { return SameType(other, record); });
    if (same == records.end())
      records.push_back(record);
    else
      *same = Overwritten(*same, record);
  }
  return Encoded(records);
}

template <class Record>
Bytes Recoded(const Bytes& payload) {
  return Encoded(Decoded<Record>(payload));
}

}  // namespace codec

/// The row of one field in the table of codecs.
template <class Record>
constexpr FieldCodec MakeCodec(std::string_view field) {
  return {field, &codec::FromJson<Record>, &codec::ToJson<Record>, &codec::Merged<Record>, &codec::Recoded<Record>};
}

}  // namespace vehicle
