#pragma once

#include <string_view>

namespace trov::commMngr {

/// A word or number that its table does not hold. The direction in it is as it stands, also where a client's word was unknown.
inline constexpr std::string_view kMapException = "[CommMngr][Someip -> Zuva] Map exception";

}  // namespace trov::commMngr
