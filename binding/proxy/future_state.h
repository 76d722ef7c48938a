#pragma once

#include <chrono>
#include <condition_variable>
#include <exception>
#include <memory>
#include <mutex>
#include <optional>
#include <utility>

namespace qe::com {

enum class Future_status { ready, timeout };

namespace detail {

/// What every promise and its future share, whatever the value. Any thread.
class Future_state_base {
 public:
  Future_state_base() = default;
  Future_state_base(const Future_state_base&) = delete;
  Future_state_base& operator=(const Future_state_base&) = delete;

  void set_exception(std::exception_ptr exception);
  void wait() const;
  Future_status wait_for(std::chrono::nanoseconds time) const;

  /// Keeps an object as long as somebody may ask for the result. Before the future is handed out.
  void keep(std::shared_ptr<const void> companion) { companion_ = std::move(companion); }

 protected:
  ~Future_state_base() = default;

  /// Makes the state ready by `store`. @throws std::future_error (promise_already_satisfied) the second time.
  template <class Store>
  void satisfy(Store&& store) {
    {
      const std::lock_guard lock{mutex_};
      throw_if_ready_locked();
      store();
      ready_ = true;
    }
    changed_.notify_all();
  }
  void rethrow_locked();

  mutable std::mutex mutex_;  // guards the members below, and the value

 private:
  void throw_if_ready_locked() const;

  mutable std::condition_variable changed_;
  bool ready_ = false;
  std::exception_ptr exception_;
  std::shared_ptr<const void> companion_;
};

template <class T>
class Future_state final : public Future_state_base {
 public:
  void set_value(T value) {
    satisfy([&] { value_ = std::move(value); });
  }

  /// The value, once, or the stored exception. Call when ready.
  T take() {
    const std::lock_guard lock{mutex_};
    rethrow_locked();
    return std::move(*value_);
  }

 private:
  std::optional<T> value_;
};

}  // namespace detail
}  // namespace qe::com
