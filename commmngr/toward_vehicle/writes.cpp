#include <stdexcept>

#include "commmngr/communications_manager.h"
#include "commmngr/texts.h"
#include "commmngr/toward_vehicle/number.h"

// A client's words become numbers. The five operations are written out, since their failures differ in all of them.
namespace trov::commMngr {

using enums::SOMEIP_RESPONSE_TYPE;

SOMEIP_RESPONSE_TYPE CommunicationsManager::TellSomeIpToUpdate_ValueControls(const std::string& type,
                                                                             const Opt<std::uint32_t>& currentValue,
                                                                             const Word& specialState) {
  const std::lock_guard lock{mutexSomeIpValueControls};
  const auto typeNumber = Number<cmc::DT_ChargingManagementCore_valueControls_type>(type);
  if (!typeNumber) {
    logger.LogDebug() << "[CommMngr] Unable to translate ValueControl object type " << type << " from zuva. Returning...";
    return SOMEIP_RESPONSE_TYPE::SET_ERROR;
  }
  logger.LogInfo() << "[CommMngr] Translated ValueControl object type " << type << " from zuva into type " << *typeNumber
                   << " for someip...";

  Opt<cmc::DT_ChargingManagementCore_valueControls_specialState> stateNumber;
  if (specialState) {
    stateNumber = Number<cmc::DT_ChargingManagementCore_valueControls_specialState>(*specialState);
    if (!stateNumber) logger.LogDebug() << kMapException;
    // Reading a missing number throws in the middle of the line, on purpose: an unknown word has no business here, the write must fail.
    logger.LogInfo() << "[CommMngr] Translated ValueControl object specialState " << *specialState << " from zuva into specialState "
                     << stateNumber.value() << " for someip...";
  }
  const auto listener = someIpListener.Get();
  if (!listener) return SOMEIP_RESPONSE_TYPE::SET_ERROR;
  return listener->Update_ValueControls(*typeNumber, currentValue, stateNumber, "ZUVA");
}

SOMEIP_RESPONSE_TYPE CommunicationsManager::TellSomeIpToUpdate_NavTargetSoc(const std::uint32_t& targetSoc) {
  const std::lock_guard lock{mutexSomeIpValueControls};
  const auto listener = someIpListener.Get();
  if (!listener) return SOMEIP_RESPONSE_TYPE::SET_ERROR;
  return listener->Update_ValueControls(cmc::DT_ChargingManagementCore_valueControls_type::immediateChargingOptionsNavTargetSoc,
                                        Opt<std::uint32_t>{targetSoc}, {}, "RBEC");
}

// Takes no mutex, nor do the three below: only the value control's way is serialised, on purpose.
SOMEIP_RESPONSE_TYPE CommunicationsManager::TellSomeIpToUpdate_SwitchControls(const std::string& type, const Word& switchValue) {
  const auto typeNumber = Number<cmc::DT_ChargingManagementCore_switchControls_type>(type);
  if (!typeNumber) {
    logger.LogDebug() << "[CommMngr] Unable to translate SwitchControl object type " << type << " from zuva. Returning...";
    return SOMEIP_RESPONSE_TYPE::SET_ERROR;
  }
  logger.LogInfo() << "[CommMngr] Translated SwitchControl object type " << type << " from zuva into type " << *typeNumber
                   << " for someip...";

  Opt<cmc::DT_ChargingManagementCore_switchControls_switchValue> valueNumber;
  if (switchValue) {
    valueNumber = Number<cmc::DT_ChargingManagementCore_switchControls_switchValue>(*switchValue);
    // An unknown value fails the whole write; a view's unknown words are only left out.
    if (!valueNumber) {
      logger.LogDebug() << "[CommMngr] Unable to translate SwitchControl object value " << *switchValue << " from zuva. Returning...";
      return SOMEIP_RESPONSE_TYPE::SET_ERROR;
    }
    logger.LogInfo() << "[CommMngr] Translated SwitchControl object value " << *switchValue << " from zuva into value " << *valueNumber
                     << " for someip...";
  }
  const auto listener = someIpListener.Get();
  if (!listener) return SOMEIP_RESPONSE_TYPE::SET_ERROR;
  return listener->Update_SwitchControls(*typeNumber, valueNumber);
}

namespace {

// One optional word of a view: absent or unknown, it is left out of the write and told so.
template <class E>
Opt<E> ViewNumber(const ara::log::Logger& logger, std::string_view member, const Word& word) {
  const auto number = word ? Number<E>(*word) : Opt<E>{};
  if (number) {
    logger.LogInfo() << "[CommMngr][Zuva -> SomeIp] Translated View object {" << member << "} " << *word << " from zuva into {" << member
                     << "} " << *number << " for someip...";
  } else {
    logger.LogInfo() << "[CommMngr][Zuva -> SomeIp] Unable to map View {" << member << "} "
                     << (word ? std::string_view{*word} : std::string_view{"no_value"}) << " from zuva (or View {" << member
                     << "} was not updated in this request)";
  }
  return number;
}

}  // namespace

SOMEIP_RESPONSE_TYPE CommunicationsManager::TellSomeIpToUpdate_Views(const std::string& type, const Word& content, const Word& visibility) {
  const auto typeNumber = Number<cmc::DT_ChargingManagementCore_views_type>(type);
  if (!typeNumber) {
    logger.LogDebug() << "[CommMngr][Zuva -> SomeIp] Unable to translate View object {type} " << type << " from zuva. Returning...";
    return SOMEIP_RESPONSE_TYPE::SET_ERROR;
  }
  logger.LogInfo() << "[CommMngr][Zuva -> SomeIp] Translated View object {type} " << type << " from zuva into {type} " << *typeNumber
                   << " for someip...";
  const auto contentNumber = ViewNumber<cmc::DT_ChargingManagementCore_views_content>(logger, "content", content);
  const auto visibilityNumber = ViewNumber<cmc::DT_ChargingManagementCore_views_visibility>(logger, "visibility", visibility);
  const auto listener = someIpListener.Get();
  if (!listener) return SOMEIP_RESPONSE_TYPE::SET_ERROR;
  return listener->Update_Views(*typeNumber, contentNumber, visibilityNumber);
}

SOMEIP_RESPONSE_TYPE CommunicationsManager::TellSomeIpToUpdate_pastErrorInformation(const std::string& type,
                                                                                    const Opt<bool>& confirmedByUser) {
  const auto typeNumber = Number<cmc::DT_ChargingManagementCore_pastErrorInformation_type>(type);
  if (!typeNumber) {
    logger.LogDebug() << "[CommMngr][Zuva -> SomeIp] Unable to translate pastErrorInformation object type " << type
                      << " from zuva. Returning...";
    return SOMEIP_RESPONSE_TYPE::SET_ERROR;
  }
  logger.LogInfo() << "[CommMngr][Zuva -> SomeIp] Translated pastErrorInformation object {type} " << type << " from zuva into {type} "
                   << *typeNumber << " for someip...";
  const auto listener = someIpListener.Get();
  if (!listener) return SOMEIP_RESPONSE_TYPE::SET_ERROR;
  return listener->Update_pastErrorInformation(*typeNumber, confirmedByUser);
}

SOMEIP_RESPONSE_TYPE CommunicationsManager::TellSomeIpToUpdate_ResetStatus(const Word& resetToFactoryData) {
  if (!resetToFactoryData) return SOMEIP_RESPONSE_TYPE::SET_ERROR;
  try {
    const auto number = Names<cmc::DT_ChargingManagementCore_resetToFactoryData_resetToFactoryData>::Inverse().at(*resetToFactoryData);
    logger.LogInfo() << "[CommMngr] Translated ResetToFactoryData object  reset " << *resetToFactoryData << " from zuva into type "
                     << number << " for someip...";
    const auto listener = someIpListener.Get();
    if (!listener) return SOMEIP_RESPONSE_TYPE::SET_ERROR;
    return listener->Update_FactoryResetInfo(number);
  } catch (...) {  // an exception of the listener's is told like a missing word, on purpose
    logger.LogDebug() << kMapException;
    return SOMEIP_RESPONSE_TYPE::SET_ERROR;
  }
}

}  // namespace trov::commMngr
