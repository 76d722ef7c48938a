#pragma once

#include "model/records_charging_management_core.h"

#include <cstdint>
#include <vector>

namespace bench {

/// One sample of the biggest field: seventeen value controls with six of their ten members.
inline std::vector<ylt::services::chargingmanagementcore::datatypes::DT_valueControls_struct> ValueControls() {
  namespace cmc = ylt::services::chargingmanagementcore::datatypes;
  std::vector<cmc::DT_valueControls_struct> controls(17);
  std::uint32_t number = 0;
  for (auto& control : controls) {
    control.currentValue = number;
    control.maxValue = 3000U;
    control.minValue = 0U;
    control.unitPercent = cmc::DT_ChargingManagementCore_valueControls_unitPercent::percent;
    control.resolution = 5U;
    control.type = static_cast<cmc::DT_ChargingManagementCore_valueControls_type>(number++);
  }
  return controls;
}

}  // namespace bench
