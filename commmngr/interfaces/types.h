#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "model/enumerations_charging_management_core.h"
#include "model/optional.h"
#include "model/resource_types.h"
#include "model/tuples.h"

/// The short names that the interfaces between the sides are written with.
namespace trov {

template <class T>
using Opt = qe::com::optional<T>;
/// The REST text of an enumeration value, or none.
using Word = Opt<std::string>;
using Words = Opt<std::vector<std::string>>;

/// How an absent number shows in a log line; it is never sent.
inline constexpr std::uint32_t kAbsentNumber = 100000;

namespace cmc = ylt::services::chargingmanagementcore::datatypes;

}  // namespace trov
