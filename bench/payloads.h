#pragma once

#include "binding/serialization/serializer.h"
#include "model/records_charging_management_core.h"
#include "tools/vehicle/server/field_host.h"

#include <vector>

namespace bench {

/// What goes over the wire for these records.
template <class Record>
vehicle::Bytes Payload(const std::vector<Record>& records) {
  vehicle::Bytes bytes;
  xr::com::someip::serialization::serialize(bytes, records, {});
  return bytes;
}

/// The view that a car shows while it charges.
inline vehicle::Bytes Popup(ylt::services::chargingmanagementcore::datatypes::DT_ChargingManagementCore_views_visibility visibility) {
  namespace cmc = ylt::services::chargingmanagementcore::datatypes;
  cmc::DT_views_struct view;
  view.type = cmc::DT_ChargingManagementCore_views_type::popup;
  view.content = cmc::DT_ChargingManagementCore_views_content::chargingInformationScreen;
  view.visibility = visibility;
  return Payload(std::vector{view});
}

}  // namespace bench
