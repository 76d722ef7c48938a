#pragma once

#include "commmngr/interfaces/types.h"

namespace trov::chargingManagementCoreListener {

/// What the mediator requires of the ChargingManagementCore listener: the start, and the five ways in which this process changes the
/// vehicle. Each Update_* blocks its thread until the vehicle has answered, at most one second. Callable from any thread. The order of the
/// operations is the order of their slots and stays.
class TROVListenerInterface {
 public:
  virtual ~TROVListenerInterface() = default;

  virtual void StartListener() = 0;
  /// `source` names the origin of the request for the log alone.
  virtual enums::SOMEIP_RESPONSE_TYPE Update_ValueControls(
      cmc::DT_ChargingManagementCore_valueControls_type type, const Opt<std::uint32_t>& value,
      const Opt<cmc::DT_ChargingManagementCore_valueControls_specialState>& specialState, const std::string& source) = 0;
  virtual enums::SOMEIP_RESPONSE_TYPE Update_SwitchControls(
      cmc::DT_ChargingManagementCore_switchControls_type type,
      const Opt<cmc::DT_ChargingManagementCore_switchControls_switchValue>& value) = 0;
  virtual enums::SOMEIP_RESPONSE_TYPE Update_Views(cmc::DT_ChargingManagementCore_views_type type,
                                                   const Opt<cmc::DT_ChargingManagementCore_views_content>& content,
                                                   const Opt<cmc::DT_ChargingManagementCore_views_visibility>& visibility) = 0;
  virtual enums::SOMEIP_RESPONSE_TYPE Update_pastErrorInformation(cmc::DT_ChargingManagementCore_pastErrorInformation_type type,
                                                                  const Opt<bool>& confirmedByUser) = 0;
  virtual enums::SOMEIP_RESPONSE_TYPE Update_FactoryResetInfo(
      cmc::DT_ChargingManagementCore_resetToFactoryData_resetToFactoryData resetToFactoryData) = 0;
};

}  // namespace trov::chargingManagementCoreListener
