#include <stdexcept>

#include "commmngr/communications_manager.h"
#include "commmngr/texts.h"
#include "commmngr/toward_rest/translation.h"

namespace trov::commMngr {
namespace {

// These lines carry two blanks and a blank behind the brace, unlike those of the other resources.
constexpr Line kType{"[CommMngr][Someip -> Zuva]  Translated SwitchControl object [type] {type,mapped_type} ={ "};
constexpr Line kValue{"[CommMngr][Someip -> Zuva]  Translated SwitchControl object [value] {value,mapped_value} ={ "};
constexpr Line kReason{
    "[CommMngr][Someip -> Zuva]  Translated SwitchControl object [restrictionReason] {restrictionReason,mapped_restrictionReason} ={ "};
constexpr Line kConfiguration{
    "[CommMngr][Someip -> Zuva]  Translated SwitchControl object [valueConfig] (item from the array) {valueConfig,mapped_valueConfig} ={ "};

using Configuration = cmc::DT_ChargingManagementCore_switchControls_switchValueConfiguration;

// An unknown number repeats the word before it, or gives an empty one at the head, on purpose: the list keeps the vehicle's length.
Words Translated(const ara::log::Logger& logger, const Opt<std::vector<Configuration>>& configuration) {
  if (!configuration) return {};
  const auto& names = Names<Configuration>::Direct();
  std::vector<std::string> words;
  words.reserve(configuration->size());
  std::string scratch;
  for (const auto number : *configuration) {
    try {
      if (names.count(number) != 0) scratch = names.at(number);
    } catch (const std::out_of_range&) {
      logger.LogDebug() << kMapException;
    }
    words.push_back(scratch);
    Tell(logger, kConfiguration, number, scratch);
  }
  return words;
}

}  // namespace

void CommunicationsManager::TellZuvaToUpdate_SwitchControls(
    const Opt<cmc::DT_ChargingManagementCore_switchControls_type>& type,
    const Opt<cmc::DT_ChargingManagementCore_switchControls_restrictionReason>& restrictionReason,
    const Opt<cmc::DT_ChargingManagementCore_switchControls_switchValue>& switchValue,
    const Opt<std::vector<Configuration>>& switchValueConfiguration) {
  const std::lock_guard lock{mutexSwitchControls};
  const auto key = Key(logger, type, kType, "[CommMngr][Someip -> Zuva] SwitchControl type invalid");
  if (!key) return;
  const auto valueWord = Translated(logger, switchValue, kValue);
  const auto reasonWord = Translated(logger, restrictionReason, kReason);
  const auto words = Translated(logger, switchValueConfiguration);
  if (const auto rest = zuvaServer.Get()) rest->Update_SwitchControls(key, valueWord, reasonWord, words);
}

}  // namespace trov::commMngr
