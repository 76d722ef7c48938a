#pragma once

#include "someip/cmc/charging_management_core_listener.h"
#include "someip/cmc/pass_on.h"

namespace trov::chargingManagementCoreListener {

/// Hands one record to the mediator. One without a type has nothing by which the REST side could find its object; reset data has no type at
/// all.
template <class Record>
void ChargingManagementCoreListener::PassOnTyped(const Record& record, std::string_view noType) {
  if constexpr (requires { record.type; }) {
    if (!record.type) {
      if (!noType.empty()) logger.LogInfo() << noType;
      return;
    }
  }
  if (const auto manager = commMngr.Get()) PassOn(record, *manager);
}

}  // namespace trov::chargingManagementCoreListener
