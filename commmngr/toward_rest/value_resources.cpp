#include <utility>

#include "commmngr/communications_manager.h"
#include "commmngr/toward_rest/translation.h"

// The wide resources cross as tuples, a line a member. Numbers are copied as they came: nothing is scaled, rounded or clamped on this road.
namespace trov::commMngr {
namespace {

using Logger = ara::log::Logger;
using ValueControlType = cmc::DT_ChargingManagementCore_valueControls_type;
using SpecialStates = Opt<std::vector<cmc::DT_ChargingManagementCore_valueControls_specialStateConfiguration>>;

void GetNumericValues_ValueControls(const Logger& logger, const types::ValueControlsRawTuple& raw,
                                    types::ValueControlsMappedTuple& mapped) {
  Copy<1>(logger, raw, mapped, "[CommMngr][Someip -> Zuva] ValueControl [currentValue] value = ");
  Copy<2>(logger, raw, mapped, "[CommMngr][Someip -> Zuva] ValueControl [minValue] value = ");
  Copy<3>(logger, raw, mapped, "[CommMngr][Someip -> Zuva] ValueControl [maxValue] value = ");
  Copy<7>(logger, raw, mapped, "[CommMngr][Someip -> Zuva] ValueControl [resolution] value = ");
}

// The REST model knows only "off" here, so any list of the vehicle's that is not empty becomes this one word, on purpose.
Words TranslatedSpecialStates(const Logger& logger, const SpecialStates& states) {
  if (!states) return {};
  if (states->empty()) {
    logger.LogInfo() << "[CommMngr][Someip -> Zuva] ValueControl [specialStateConfiguration] = {}";
    return std::vector<std::string>{};
  }
  Tell(logger, Mapped("ValueControl [specialStateConfiguration]"), states->front(), "off");
  return std::vector<std::string>{"off"};
}

void GetMappedValues_ValueControls(const Logger& logger, const types::ValueControlsRawTuple& raw, types::ValueControlsMappedTuple& mapped) {
  Translate<4>(logger, raw, mapped, Mapped("ValueControl [unitPercent]"));
  Translate<5>(logger, raw, mapped, Mapped("ValueControl [unitDistance]"));
  Translate<6>(logger, raw, mapped, Mapped("ValueControl [unitTime]"));
  Translate<8>(logger, raw, mapped, Mapped("ValueControl [restrictionReason]"));
  Translate<9>(logger, raw, mapped, Mapped("ValueControl [specialState]"));
  std::get<10>(mapped) = TranslatedSpecialStates(logger, std::get<10>(raw));
}

void GetNumericValues_ValueIndications(const Logger& logger, const types::ValueIndicationsRawTuple& raw,
                                       types::ValueIndicationsMappedTuple& mapped) {
  Copy<1>(logger, raw, mapped, "[CommMngr][Someip -> Zuva] ValueIndication [currentValue] value = ");
  Copy<2>(logger, raw, mapped, "[CommMngr][Someip -> Zuva] ValueIndication [maxValue] value = ");
  Copy<3>(logger, raw, mapped, "[CommMngr][Someip -> Zuva] ValueIndication [minValue] value = ");
  Copy<4>(logger, raw, mapped, "[CommMngr][Someip -> Zuva] ValueIndication [currentTimeDateValue] value = ");
}

void GetMappedValues_ValueIndications(const Logger& logger, const types::ValueIndicationsRawTuple& raw,
                                      types::ValueIndicationsMappedTuple& mapped) {
  Translate<5>(logger, raw, mapped, {"[CommMngr][Someip -> Zuva] ValueIndication [unitPercent] value = ", false});
  Translate<6>(logger, raw, mapped, {"[CommMngr][Someip -> Zuva] ValueIndication [unitTime] value = ", false});
  Translate<7>(logger, raw, mapped, {"[CommMngr][Someip -> Zuva] ValueIndication [unitSpeed] value = ", false});
  Translate<8>(logger, raw, mapped, {"[CommMngr][Someip -> Zuva] ValueIndication [unitPower] value = ", false});
  Translate<9>(logger, raw, mapped, {"[CommMngr][Someip -> Zuva] ValueIndication [unitEnergy] value = ", false});
  Translate<10>(logger, raw, mapped, {"[CommMngr][Someip -> Zuva] ValueIndication [restrictionReason] value = ", false});
}

// As Key, for the two resources where an absent type is told like an unknown one instead of being the caller's fault.
template <class E>
Word KeyOrInvalid(const Logger& logger, const Opt<E>& type, const Line& line, std::string_view invalid) {
  auto word = Translated(logger, type, line);
  if (!word) logger.LogInfo() << invalid;
  return word;
}

}  // namespace

void CommunicationsManager::TellZuvaToUpdate_ValueControls(types::ValueControlsRawTuple&& control) {
  const auto& type = std::get<0>(control);
  // The navigation target ends at the same REST element as this one control, so both share a lock.
  auto& mutex = type.value() == ValueControlType::immediateChargingOptionsNavTargetSoc ? mutexNavTargetSoc : mutexValueControls;
  const std::lock_guard lock{mutex};
  types::ValueControlsMappedTuple mapped;
  std::get<0>(mapped) = Key(logger, type, Mapped("ValueControl [type]"), "[CommMngr][Someip -> Zuva] ValueControl type invalid");
  if (!std::get<0>(mapped)) return;
  GetNumericValues_ValueControls(logger, control, mapped);
  GetMappedValues_ValueControls(logger, control, mapped);
  if (const auto rest = zuvaServer.Get()) rest->Update_ValueControls(std::move(mapped));
}

void CommunicationsManager::TellZuvaToUpdate_valueIndications(types::ValueIndicationsRawTuple&& indication) {
  const std::lock_guard lock{mutexValueIndications};
  types::ValueIndicationsMappedTuple mapped;
  std::get<0>(mapped) = KeyOrInvalid(logger, std::get<0>(indication), {"[CommMngr][Someip -> Zuva] ValueIndication [type] value = ", false},
                                     "[CommMngr][Someip -> Zuva] ValueIndication type invalid");
  if (!std::get<0>(mapped)) return;
  GetNumericValues_ValueIndications(logger, indication, mapped);
  GetMappedValues_ValueIndications(logger, indication, mapped);
  if (const auto rest = zuvaServer.Get()) rest->Update_valueIndications(std::move(mapped));
}

void CommunicationsManager::TellZuvaToUpdate_chargingProcessInformation(types::ChargingProcessInformationRawTuple&& process) {
  const std::lock_guard lock{mutexChargingProcessInformation};
  types::ChargingProcessInformationMappedTuple mapped;
  std::get<0>(mapped) =
      KeyOrInvalid(logger, std::get<0>(process), kSilent, "[CommMngr][Someip -> Zuva] ChargingProcessInformation type invalid");
  if (!std::get<0>(mapped)) return;
  // No line for a good translation: this resource arrives often.
  Translate<1>(logger, process, mapped, kSilent);
  Copy<2>(logger, process, mapped);
  Translate<3>(logger, process, mapped, kSilent);
  Translate<4>(logger, process, mapped, kSilent);
  Translate<5>(logger, process, mapped, kSilent);
  Translate<6>(logger, process, mapped, kSilent);
  Translate<7>(logger, process, mapped, kSilent);
  Translate<8>(logger, process, mapped, kSilent);
  Copy<9>(logger, process, mapped);
  Translate<10>(logger, process, mapped, kSilent);
  if (const auto rest = zuvaServer.Get()) rest->Update_chargingProcessInformation(std::move(mapped));
}

void CommunicationsManager::TellZuvaToUpdate_BidirectionalChargingModes(types::BidirectionalChargingModesRawTuple&& mode) {
  const std::lock_guard lock{mutexBidirectionalChargingModes};
  types::BidirectionalChargingModesMappedTuple mapped;
  std::get<0>(mapped) = Key(logger, std::get<0>(mode), Mapped("BidirectionalChargingModes [type]"),
                            "[CommMngr][Someip -> Zuva] BidirectionalChargingModes type invalid");
  if (!std::get<0>(mapped)) return;
  Translate<3>(logger, mode, mapped, Mapped("BidirectionalChargingModes [chargingMode]"));
  Translate<2>(logger, mode, mapped, Mapped("BidirectionalChargingModes [notification]"));
  Translate<1>(logger, mode, mapped, Mapped("BidirectionalChargingModes [information]"));
  Copy<4>(logger, mode, mapped);
  Copy<5>(logger, mode, mapped);
  Copy<6>(logger, mode, mapped);
  Copy<7>(logger, mode, mapped);
  if (const auto rest = zuvaServer.Get()) rest->Update_BidirectionalChargingModes(std::move(mapped));
}

void CommunicationsManager::TellZuvaToUpdate_NavTargetSoc(const std::uint32_t& targetSoc) {
  const std::lock_guard lock{mutexNavTargetSoc};
  logger.LogInfo() << "[CommMngr][RBEC -> Zuva] Updating NavTargetSoc with value" << targetSoc;
  // Only the low 8 bits survive, on purpose: the value is a state of charge in percent.
  const auto percent = static_cast<std::uint8_t>(targetSoc & 0xFFU);
  if (const auto rest = zuvaServer.Get()) rest->Update_NavTargetSoc(percent);
}

}  // namespace trov::commMngr
