#pragma once

#include "commmngr/interfaces/types.h"

namespace trov::commMngr {

/// What the RouteBasedEnergyContents listener may call with the navigation's target state of charge, in percent.
/// Callable from any thread. The order of the operations is the order of their slots and stays.
class CommMngrRBECSideInterface {
 public:
  virtual ~CommMngrRBECSideInterface() = default;

  virtual void TellZuvaToUpdate_NavTargetSoc(const std::uint32_t& targetSoc) = 0;
  /// Blocks until the vehicle has answered, at most one second.
  virtual enums::SOMEIP_RESPONSE_TYPE TellSomeIpToUpdate_NavTargetSoc(const std::uint32_t& targetSoc) = 0;
};

}  // namespace trov::commMngr
