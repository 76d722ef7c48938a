#include "ara/log/impl/dlt_context_ids.h"

#include <cstddef>

namespace ara::log::impl {

std::string DltContextIds::Take(std::string_view contextId) {
  constexpr std::size_t kLength = 4;
  constexpr unsigned kNumbers = 10'000;
  std::string id{contextId.substr(0, kLength)};
  for (unsigned number = 1; number < kNumbers && (id.empty() || !taken_.insert(id).second); ++number) {
    const std::string digits = std::to_string(number);
    id = std::string{contextId.substr(0, kLength - digits.size())} + digits;
  }
  return id;
}

}  // namespace ara::log::impl
