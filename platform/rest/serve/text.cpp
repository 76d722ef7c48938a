#include "serve/text.h"

#include <algorithm>

namespace zuva::serve {

std::string LowerCase(std::string_view text) {
  std::string result{text};
  for (char& c : result) c = LowerCase(c);
  return result;
}

bool EqualsIgnoringCase(std::string_view text, std::string_view lower) {
  return std::equal(text.begin(), text.end(), lower.begin(), lower.end(), [](char a, char b) { return LowerCase(a) == b; });
}

std::string_view Trim(std::string_view text) {
  constexpr std::string_view kBlanks = " \t";
  const auto first = text.find_first_not_of(kBlanks);
  if (first == std::string_view::npos) return {};
  return text.substr(first, text.find_last_not_of(kBlanks) - first + 1);
}

bool NextItem(std::string_view& list, std::string_view& item, char separator) {
  if (list.empty()) return false;
  const auto end = list.find(separator);
  item = Trim(list.substr(0, end));
  list = end == std::string_view::npos ? std::string_view{} : list.substr(end + 1);
  return true;
}

bool HasToken(std::string_view list, std::string_view lower) {
  for (std::string_view item; NextItem(list, item);) {
    if (EqualsIgnoringCase(item, lower)) return true;
  }
  return false;
}

}  // namespace zuva::serve
