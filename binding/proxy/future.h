#pragma once

#include "binding/proxy/future_state.h"

#include <chrono>
#include <exception>
#include <future>
#include <memory>
#include <utility>

namespace qe::com {

template <class T>
class Promise;

/// The result of a method call, to be had once. Movable; empty when default-constructed, moved from, or after `get`.
///
/// Dropping it takes nothing back at the vehicle: an answer that still comes finds nobody. One thread at a time uses one future.
template <class T>
class Future {
 public:
  Future() = default;

  bool valid() const noexcept { return state_ != nullptr; }

  /// @throws std::future_error (no_state) on an empty future, as do the operations below.
  void wait() const { state().wait(); }

  template <class Rep, class Period>
  Future_status wait_for(const std::chrono::duration<Rep, Period>& time) const {
    return state().wait_for(std::chrono::duration_cast<std::chrono::nanoseconds>(time));
  }

  /// Lets an object end together with the future, such as the call that would bring its result. For whoever makes the future.
  void keep(std::shared_ptr<const void> companion) { state().keep(std::move(companion)); }

  /// Waits, empties the future, and gives the value or throws the stored exception.
  T get() {
    wait();
    return std::exchange(state_, nullptr)->take();
  }

 private:
  friend class Promise<T>;
  explicit Future(std::shared_ptr<detail::Future_state<T>> state) : state_{std::move(state)} {}

  detail::Future_state<T>& state() const {
    if (!state_) throw std::future_error{std::future_errc::no_state};
    return *state_;
  }

  std::shared_ptr<detail::Future_state<T>> state_;
};

/// The answering side of a future. A promise that is dropped unanswered leaves its future unready: a call that was never
/// answered runs into its user's time-out instead of looking finished.
template <class T>
class Promise {
 public:
  Promise() : unfetched_{std::make_shared<detail::Future_state<T>>()}, state_{unfetched_} {}
  Promise(Promise&&) noexcept = default;
  Promise& operator=(Promise&&) noexcept = default;

  /// Once. From then on only the future keeps the result's place: who abandoned it must not be kept waiting for by anything.
  /// @throws std::future_error (future_already_retrieved)
  Future<T> get_future() {
    if (!unfetched_) throw std::future_error{std::future_errc::future_already_retrieved};
    return Future<T>{std::exchange(unfetched_, nullptr)};
  }

  /// Answers; without effect when the future is gone. @throws std::future_error (promise_already_satisfied)
  void set_value(T value) {
    if (const auto state = state_.lock()) state->set_value(std::move(value));
  }
  void set_exception(std::exception_ptr exception) {
    if (const auto state = state_.lock()) state->set_exception(std::move(exception));
  }

 private:
  std::shared_ptr<detail::Future_state<T>> unfetched_;  // until get_future
  std::weak_ptr<detail::Future_state<T>> state_;
};

}  // namespace qe::com
