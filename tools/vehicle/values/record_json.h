#pragma once

#include "tools/vehicle/record_names.h"
#include "tools/vehicle/values/scalar_json.h"

#include <algorithm>

namespace vehicle {

/// A record from an object of its members by name; members that are left out stay absent. Throws BadInput for a member that the
/// record does not have and for a value that does not fit.
template <class Record>
Record RecordFromJson(const nlohmann::json& object, const Place& place) {
  if (!object.is_object()) throw BadInput{place, "a record is an object"};
  constexpr auto& names = MemberNames<Record>::kNames;
  for (const auto& [name, value] : object.items())
    if (std::find(names.begin(), names.end(), name) == names.end()) throw BadInput{place / name, "the record has no such member"};
  Record record;
  auto name = names.begin();
  record.visit([&]<class T>(qe::com::optional<T>& member, auto) {
    if (const auto found = object.find(*name); found != object.end()) member = ValueFromJson<T>(*found, place / *name);
    ++name;
  });
  return record;
}

template <class Record>
nlohmann::json RecordToJson(const Record& record) {
  auto object = nlohmann::json::object();
  auto name = MemberNames<Record>::kNames.begin();
  record.visit([&]<class T>(const qe::com::optional<T>& member, auto) {
    if (member) object[std::string{*name}] = ValueToJson(*member);
    ++name;
  });
  return object;
}

}  // namespace vehicle
