#pragma once

#include "model/records_charging_management_core.h"

#include <cstdint>
#include <vector>

namespace bench {

/// Values are below it, since clients are shown none above 3,000.
inline constexpr std::uint32_t kValues = 3000;

/// One sample of the biggest field: a value control of each of the seventeen types, with six of their ten members. Their values count on
/// from `first` and begin anew behind the last one, so that no control has the value that it has in the sample of the next number.
inline std::vector<ylt::services::chargingmanagementcore::datatypes::DT_valueControls_struct> ValueControls(std::uint32_t first = 0) {
  namespace cmc = ylt::services::chargingmanagementcore::datatypes;
  std::vector<cmc::DT_valueControls_struct> controls(17);
  std::uint32_t number = 0;
  for (auto& control : controls) {
    control.currentValue = (first + number) % kValues;
    control.maxValue = 3000U;
    control.minValue = 0U;
    control.unitPercent = cmc::DT_ChargingManagementCore_valueControls_unitPercent::percent;
    control.resolution = 5U;
    // The numbers five to nine are no types.
    control.type = static_cast<cmc::DT_ChargingManagementCore_valueControls_type>(number < 5 ? number : number + 5);
    ++number;
  }
  return controls;
}

/// Of the seventeen, those that have an object of their own.
inline constexpr std::size_t kValueControlObjects = 14;

}  // namespace bench
