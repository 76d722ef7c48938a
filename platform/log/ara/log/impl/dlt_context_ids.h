#pragma once

#include <functional>
#include <set>
#include <string>
#include <string_view>

namespace ara::log::impl {

/// Gives out the unique four-character ids that DLT knows contexts by: the id itself cut to four, or, if that is taken, as much of
/// its head as a running number leaves (`TROV`, `TRO1`, … `TR10`).
class DltContextIds {
 public:
  std::string Take(std::string_view contextId);

 private:
  std::set<std::string, std::less<>> taken_;
};

}  // namespace ara::log::impl
