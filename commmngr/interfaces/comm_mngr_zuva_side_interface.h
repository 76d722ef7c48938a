#pragma once

#include "commmngr/interfaces/types.h"

namespace trov::commMngr {

/// What the REST application may call: a client's words on their way to the vehicle.
/// Each TellSomeIpToUpdate_* blocks its thread until the vehicle has answered, at most one second, and tells how the set ended.
/// Callable from any thread. The order of the operations is the order of their slots and stays.
class CommMngrZuvaSideInterface {
 public:
  virtual ~CommMngrZuvaSideInterface() = default;

  virtual enums::SOMEIP_RESPONSE_TYPE TellSomeIpToUpdate_SwitchControls(const std::string& type, const Word& switchValue) = 0;
  virtual enums::SOMEIP_RESPONSE_TYPE TellSomeIpToUpdate_ValueControls(const std::string& type, const Opt<std::uint32_t>& currentValue,
                                                                       const Word& specialState) = 0;
  virtual enums::SOMEIP_RESPONSE_TYPE TellSomeIpToUpdate_Views(const std::string& type, const Word& content, const Word& visibility) = 0;
  virtual enums::SOMEIP_RESPONSE_TYPE TellSomeIpToUpdate_pastErrorInformation(const std::string& type,
                                                                              const Opt<bool>& confirmedByUser) = 0;
  virtual enums::SOMEIP_RESPONSE_TYPE TellSomeIpToUpdate_ResetStatus(const Word& resetToFactoryData) = 0;
  /// The REST side is ready: the listeners may look for their services.
  virtual void TellSomeIpToStartListener() = 0;
};

}  // namespace trov::commMngr
