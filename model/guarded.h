#pragma once

#include <memory>
#include <mutex>
#include <utility>

namespace trov {

/// A shared pointer to a neighbour that one thread sets while others use it.
///
/// Users take a local copy with `Get` and work on that, so that the neighbour lives as long as the use. Any thread.
template <class T>
class Guarded {
 public:
  Guarded() = default;
  explicit Guarded(std::shared_ptr<T> neighbour) : neighbour_{std::move(neighbour)} {}
  Guarded(const Guarded&) = delete;
  Guarded& operator=(const Guarded&) = delete;

  /// A copy of the pointer, empty when none is set.
  std::shared_ptr<T> Get() const {
    const std::lock_guard lock{mutex_};
    return neighbour_;
  }

  /// Replaces the pointer. The former neighbour is released outside the lock: its destructor may ask this object again.
  void Set(std::shared_ptr<T> neighbour) {
    const std::lock_guard lock{mutex_};
    neighbour_.swap(neighbour);
  }

 private:
  mutable std::mutex mutex_;  // guards neighbour_
  std::shared_ptr<T> neighbour_;
};

}  // namespace trov
