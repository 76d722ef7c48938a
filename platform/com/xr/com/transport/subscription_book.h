#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <vector>

#include "xr/com/client_port.h"

namespace xr::com::transport {

/// What has been asked for of each field's eventgroup and how it was answered. Wanted subscriptions outlive every loss; each is `due`
/// when it is to be sent (again). Belongs to the transport thread.
class Subscription_book {
 public:
  using State = cpp_binding::proxy::Subscription_state;
  using Predicate = std::function<bool(std::uint16_t field)>;

  /// `changed` hears each change of a field's state.
  Subscription_book(std::size_t fields, std::function<void(std::uint16_t field, State state)> changed);

  void want(std::uint16_t field);

  /// Whether the service may hold a subscription that must be ended now.
  bool unwant(std::uint16_t field);

  /// The service, or the connection of those fields, is there (again).
  void restart(const Predicate& concerned);

  /// It is gone: nothing is subscribed, and what is wanted waits for `restart`.
  void drop(const Predicate& concerned);

  /// All that stands is due for its renewal; what was refused waits for the next offer.
  void renew();

  /// An offer came: what was refused is tried again.
  void retry_refused();

  void acknowledged(std::uint16_t field);
  void refused(std::uint16_t field);

  /// What got no answer is tried again.
  void retry_unanswered();

  /// The fields to be subscribed now, of those that can be.
  std::vector<std::uint16_t> due(const Predicate& possible) const;

  /// A field's subscription is on its way, so it is no longer due.
  void sent(std::uint16_t field);

  /// Whether the service may still hold the subscription from before a loss that only this side has seen; until the next one is sent.
  bool is_left(std::uint16_t field) const { return fields_[field].left; }

  bool is_wanted(std::uint16_t field) const { return fields_[field].wanted; }

 private:
  struct Field {
    bool wanted = false;
    bool due = false;
    bool refused = false;
    bool left = false;
    State state = State::not_subscribed;
  };

  void set_state(std::uint16_t field, State state);
  template <class Action>
  void for_wanted(Action action);

  std::vector<Field> fields_;
  std::function<void(std::uint16_t, State)> changed_;
};

}  // namespace xr::com::transport
