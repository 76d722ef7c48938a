#pragma once

#include "someip/texts.h"

namespace trov::chargingManagementCoreListener {

inline constexpr someip::SetTexts kValueControlTexts{
    .updating = "[SomeIp] Updating the someip field with values received from zuva...",
    .ended = "[SomeIp][Zuva -> Someip] ValueControl set call ended.",
    .timeout = "[SomeIp] ValueControls Set timeout",
    .response = {},
    .exception = "[SomeIp] Exception caught while setting a ValueControl in SomeIp: ",
    .unknown = "[SomeIp] Unknown Exception caught while setting a ValueControl in SomeIp..."};

inline constexpr someip::SetTexts kSwitchControlTexts{
    .updating = "[SomeIp]Updating the someip field with values received from zuva...",  // without the blank, on purpose
    .ended = "[SomeIp] SwitchControls either wait timeout expired or info is already available !!!!!!..",
    .timeout = "[SomeIp] SwitchControls Set timeout",
    .response = {},
    .exception = "[SomeIp] Exception caught while setting a SwitchControl in SomeIp: ",
    .unknown = "[SomeIp] Unknown Exception caught while setting a SwitchControl in SomeIp: "};

inline constexpr someip::SetTexts kViewTexts{
    .updating = "[SomeIp][Zuva -> Someip] Updating the someip field with values received from zuva...",
    .ended = "[SomeIp][Zuva -> Someip] Views set call ended.",
    .timeout = "[SomeIp][Zuva -> Someip] Views Set timeout.",
    .response = "[SomeIp][Zuva -> Someip] Views Set response received.",
    .exception = "[SomeIp][Zuva -> Someip] Exception caught while setting a View in SomeIp: ",
    .unknown = "[SomeIp][Zuva -> Someip] Unknown Exception caught while setting a View in SomeIp: "};

inline constexpr someip::SetTexts kPastErrorTexts{
    .updating = kViewTexts.updating,
    .ended = "[SomeIp][Zuva -> Someip] PastErrorInformation set call ended.",
    .timeout = "[SomeIp][Zuva -> Someip] PastErrorInformation Set timeout.",
    .response = "[SomeIp][Zuva -> Someip] PastErrorInformation Set response received.",
    .exception = "[SomeIp][Zuva -> Someip] Exception caught while setting a pastErrorInformation in SomeIp: ",
    .unknown = "[SomeIp][Zuva -> Someip] Unknown Exception caught while setting a pastErrorInformation in SomeIp..."};

inline constexpr someip::SetTexts kResetTexts{
    .updating = kViewTexts.updating,
    .ended = kViewTexts.ended,  // the view's words here and in the next two, on purpose
    .timeout = kViewTexts.timeout,
    .response = kViewTexts.response,
    .exception = "[SomeIp][Zuva -> Someip] Exception caught while setting a ResetToFactoryData in SomeIp: ",
    .unknown = "[SomeIp][Zuva -> Someip] Unknown Exception caught while setting a ResetToFactoryData in SomeIp: "};

}  // namespace trov::chargingManagementCoreListener
