#pragma once

#include <string>
#include <string_view>

#include "ara/rest/ogm.h"

namespace ara::rest::serialize {

/// Appends the JSON text (RFC 8259) of a tree, without any white space. A `Real` is the shortest text that reads back as the same 32-bit
/// float; not-a-number and infinities are `null`, and so is a field without a value. Bytes that are not UTF-8 become U+FFFD.
void Write(std::string& out, const ogm::Value& value);
std::string ToText(const ogm::Value& value);

/// Appends a text as a JSON string, quotes included.
void WriteString(std::string& out, std::string_view text);

}  // namespace ara::rest::serialize
