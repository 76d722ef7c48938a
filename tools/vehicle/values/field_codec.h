#pragma once

#include "tools/vehicle/values/bad_input.h"

#include <nlohmann/json_fwd.hpp>

#include <span>
#include <string_view>
#include <vector>

namespace vehicle {

using Bytes = std::vector<unsigned char>;

/// What the vehicle can do with the value of one field. The value itself is held as the payload that goes over the wire, so
/// that a wrong one can be held as well.
struct FieldCodec {
  std::string_view field;
  /// The payload of an array of records in words. Throws BadInput.
  Bytes (*fromJson)(const nlohmann::json& records, const Place& place);
  /// The records in words. Throws a std::exception for a payload that does not decode.
  nlohmann::json (*toJson)(const Bytes& payload);
  /// `held` after a set of `posted`: each posted record overwrites the members that it has in the held record of its type, and is
  /// appended if there is none; where records have no type the first one is meant. Throws a std::exception for a payload that does not
  /// decode.
  Bytes (*merged)(const Bytes& held, const Bytes& posted);
  /// The payload decoded and encoded again. Throws a std::exception for one that does not decode.
  Bytes (*recoded)(const Bytes& payload);
};

/// All fields of both services.
std::span<const FieldCodec> FieldCodecs();

/// Throws BadInput if there is no such field.
const FieldCodec& CodecOf(std::string_view field, const Place& place);

/// Bytes from hexadecimal digits, blanks between them allowed. Throws BadInput.
Bytes BytesFromHex(const nlohmann::json& text, const Place& place);
/// The same the other way, one blank between two bytes.
std::string HexFromBytes(const Bytes& bytes);

}  // namespace vehicle
