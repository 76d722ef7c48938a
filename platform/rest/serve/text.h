#pragma once

#include <string>
#include <string_view>

namespace zuva::serve {

/// ASCII only, as protocol words are.
constexpr char LowerCase(char c) {
  return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}
std::string LowerCase(std::string_view text);

/// Compares without regard to ASCII case; `lower` is in lower case.
bool EqualsIgnoringCase(std::string_view text, std::string_view lower);

/// Without blanks and tabs at both ends.
std::string_view Trim(std::string_view text);

/// Takes the next item off a list separated by `separator`, trimmed. False at the end of the list.
bool NextItem(std::string_view& list, std::string_view& item, char separator = ',');

/// Whether a comma-separated header value holds this word (given in lower case).
bool HasToken(std::string_view list, std::string_view lower);

}  // namespace zuva::serve
