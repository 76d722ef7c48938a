#pragma once

#include <boost/system/error_code.hpp>
#include <boost/system/result.hpp>
#include <cstddef>
#include <string>
#include <string_view>
#include <type_traits>

#include "ara/rest/ogm.h"

namespace ara::rest::serialize {

enum class JsonError { malformed = 1, notAnObject, tooDeep, repeatedKey };

boost::system::error_code make_error_code(JsonError error) noexcept;

struct JsonLimits {
  std::size_t depth = 32;  ///< open objects and arrays; the outer object is the first
};

/// Reads one JSON object (RFC 8259) and keeps the order of its fields. Stricter than the standard asks: no byte order mark, no repeated
/// key, no lone surrogate escape, no number beyond a double, nothing behind the object. A number without fraction or exponent that
/// fits 64 bits signed becomes `Int`, any other `Real`. Safe on any thread, with text from anybody.
boost::system::result<Pointer<ogm::Object>> ParseObject(std::string_view text, const JsonLimits& limits = {});

/// The same for texts that the program brings along.
class JSONSerializer {
 public:
  /// Throws `DataModelException` that tells what is wrong.
  Pointer<ogm::Object> Deserialize(const std::string& text) const;
};

}  // namespace ara::rest::serialize

template <>
struct boost::system::is_error_code_enum<ara::rest::serialize::JsonError> : std::true_type {};
