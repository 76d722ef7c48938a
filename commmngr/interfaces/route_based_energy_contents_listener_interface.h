#pragma once

namespace trov::routeBasedEnergyContents {

/// What the mediator requires of the RouteBasedEnergyContents listener.
class RouteBasedEnergyContentsListenerInterface {
 public:
  virtual ~RouteBasedEnergyContentsListenerInterface() = default;

  virtual void StartListener() = 0;
};

}  // namespace trov::routeBasedEnergyContents
