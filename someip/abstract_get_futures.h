#pragma once

namespace trov::getFutures {

/// A client of the periodic synchronisation: fetches the whole state of its service.
class Abstract_GetFutures {
 public:
  virtual ~Abstract_GetFutures() = default;

  /// Called on the synchroniser's thread; may take as long as all time-outs of its gets together.
  virtual void FetchData() = 0;
};

}  // namespace trov::getFutures
