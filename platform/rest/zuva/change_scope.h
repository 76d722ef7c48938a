#pragma once

#include <mutex>

namespace zuva {

class BaseXObject;

/// Holds an object's lock from the first to the last field write of one update, so that no reader sees half of it, and publishes once
/// when the outermost scope of the object ends, if anything changed. Unwinding publishes too: what was written stays written.
/// Scopes nest on one thread. The object outlives the scope.
class [[nodiscard]] ChangeScope {
 public:
  explicit ChangeScope(BaseXObject& object);
  ~ChangeScope();
  ChangeScope(const ChangeScope&) = delete;
  ChangeScope& operator=(const ChangeScope&) = delete;

 private:
  BaseXObject& object_;
  std::lock_guard<std::recursive_mutex> lock_;
};

}  // namespace zuva
