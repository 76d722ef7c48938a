#include <exception>
#include <utility>

#include "model/records_charging_management_core.h"
#include "someip/cmc/charging_management_core_listener.h"
#include "someip/cmc/resources.h"
#include "someip/cmc/set_texts.h"

// The vehicle is written to: five sets, one algorithm.
namespace trov::chargingManagementCoreListener {

using enums::SOMEIP_RESPONSE_TYPE;

namespace {

constexpr std::chrono::seconds kSetTimeout{1};

template <class T>
std::uint32_t Mark(const Opt<T>& value) {
  return value ? static_cast<std::uint32_t>(*value) : kAbsentNumber;
}

}  // namespace

// Any answer in time counts as success, whatever it says.
template <class R>
SOMEIP_RESPONSE_TYPE ChargingManagementCoreListener::Set(const typename R::Record& record, const someip::SetTexts& texts) {
  if (proxyWrapper->IsProxyNull()) return SOMEIP_RESPONSE_TYPE::SET_ERROR;
  logger.LogInfo() << texts.updating;
  try {
    const bool timedOut = proxyWrapper->SomeIp_Set(R::id, types::SetPayloadVariant{record}, kSetTimeout);
    logger.LogInfo() << texts.ended;
    if (timedOut) {
      logger.LogInfo() << texts.timeout;
      return SOMEIP_RESPONSE_TYPE::SET_TIMEOUT;
    }
    if (!texts.response.empty()) logger.LogInfo() << texts.response;
    return SOMEIP_RESPONSE_TYPE::SET_SUCCESS;
  } catch (const std::exception& e) {
    logger.LogInfo() << texts.exception << e.what();
  } catch (...) {  // the border of this side: the status is the whole report
    logger.LogInfo() << texts.unknown;
  }
  return SOMEIP_RESPONSE_TYPE::SET_ERROR;
}

SOMEIP_RESPONSE_TYPE ChargingManagementCoreListener::Update_ValueControls(
    cmc::DT_ChargingManagementCore_valueControls_type type, const Opt<std::uint32_t>& value,
    const Opt<cmc::DT_ChargingManagementCore_valueControls_specialState>& specialState, const std::string& source) {
  logger.LogInfo() << "[SomeIp] Received ValueControl object from " << source;
  logger.LogInfo() << "[SomeIp] ValueControl type: " << type << ". ValueControl value: " << Mark(value)
                   << ". ValueControl specialState: " << Mark(specialState);
  cmc::DT_valueControls_struct record;
  record.type = type;
  record.currentValue = value;
  record.specialState = specialState;
  return Set<ValueControls>(record, kValueControlTexts);
}

SOMEIP_RESPONSE_TYPE ChargingManagementCoreListener::Update_SwitchControls(
    cmc::DT_ChargingManagementCore_switchControls_type type, const Opt<cmc::DT_ChargingManagementCore_switchControls_switchValue>& value) {
  logger.LogInfo() << "[SomeIp]Received SwitchControl object from ZUVA...";
  logger.LogInfo() << "[SomeIp] SwitchControl type: " << type << ". SwitchControl value: " << Mark(value);
  cmc::DT_switchControls_struct record;
  record.type = type;
  record.switchValue = value;
  return Set<SwitchControls>(record, kSwitchControlTexts);
}

SOMEIP_RESPONSE_TYPE ChargingManagementCoreListener::Update_Views(cmc::DT_ChargingManagementCore_views_type type,
                                                                  const Opt<cmc::DT_ChargingManagementCore_views_content>& content,
                                                                  const Opt<cmc::DT_ChargingManagementCore_views_visibility>& visibility) {
  logger.LogInfo() << "[SomeIp][Zuva -> Someip] Received View object from ZUVA...";
  logger.LogInfo() << "[SomeIp][Zuva -> Someip] View {type}: " << type << ". Content {value}: " << Mark(content)
                   << ". Visibility value: " << Mark(visibility);
  cmc::DT_views_struct record;
  record.type = type;
  record.content = content;
  record.visibility = visibility;
  return Set<Views>(record, kViewTexts);
}

SOMEIP_RESPONSE_TYPE ChargingManagementCoreListener::Update_pastErrorInformation(
    cmc::DT_ChargingManagementCore_pastErrorInformation_type type, const Opt<bool>& confirmedByUser) {
  logger.LogInfo() << "[SomeIp][Zuva -> Someip] Received pastErrorInformation object from ZUVA...";
  logger.LogInfo() << "[SomeIp][Zuva -> Someip] PastErrorInformation {type}: " << type
                   << ". {confirmedByUser}: " << (confirmedByUser && *confirmedByUser);
  cmc::DT_pastErrorInformation_struct record;
  record.type = type;
  record.confirmedByUser = confirmedByUser;
  return Set<PastErrorInformation>(record, kPastErrorTexts);
}

SOMEIP_RESPONSE_TYPE ChargingManagementCoreListener::Update_FactoryResetInfo(
    cmc::DT_ChargingManagementCore_resetToFactoryData_resetToFactoryData resetToFactoryData) {
  logger.LogInfo() << "[SomeIp][Zuva -> Someip] Received FactoryReset object from ZUVA...";
  logger.LogInfo() << "[SomeIp][Zuva -> Someip] FactoryReset {resetToFactoryData}: " << resetToFactoryData;
  cmc::DT_resetToFactoryData_struct record;
  record.resetToFactoryData = resetToFactoryData;
  return Set<FactoryResetData>(record, kResetTexts);
}

}  // namespace trov::chargingManagementCoreListener
