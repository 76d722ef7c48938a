#include "xr/com/transport/subscription_book.h"

#include <utility>

namespace xr::com::transport {

Subscription_book::Subscription_book(std::size_t fields, std::function<void(std::uint16_t, State)> changed)
    : fields_(fields), changed_{std::move(changed)} {}

void Subscription_book::want(std::uint16_t field) {
  auto& entry = fields_[field];
  if (entry.wanted) return;  // one more sink of a subscription that stands
  entry.wanted = entry.due = true;
}

bool Subscription_book::unwant(std::uint16_t field) {
  auto& entry = fields_[field];
  const bool held = entry.state != State::not_subscribed;
  entry = {.state = entry.state};
  set_state(field, State::not_subscribed);
  return held;
}

void Subscription_book::restart(const Predicate& concerned) {
  for_wanted([&](std::uint16_t field, Field& entry) {
    if (!concerned(field)) return;
    entry.due = true;
    entry.refused = false;
  });
}

void Subscription_book::drop(const Predicate& concerned) {
  for_wanted([&](std::uint16_t field, Field& entry) {
    if (!concerned(field)) return;
    entry.due = entry.refused = false;
    entry.left = entry.left || entry.state != State::not_subscribed;
    set_state(field, State::not_subscribed);
  });
}

void Subscription_book::renew() {
  for_wanted([](std::uint16_t, Field& entry) { entry.due = entry.due || !entry.refused; });
}

void Subscription_book::retry_refused() {
  for_wanted([](std::uint16_t, Field& entry) {
    entry.due = entry.due || entry.refused;
    entry.refused = false;
  });
}

void Subscription_book::acknowledged(std::uint16_t field) {
  if (!fields_[field].wanted) return;
  fields_[field].refused = false;
  set_state(field, State::subscribed);
}

void Subscription_book::refused(std::uint16_t field) {
  if (!fields_[field].wanted) return;
  fields_[field].refused = true;
  fields_[field].due = false;
  set_state(field, State::not_subscribed);
}

void Subscription_book::retry_unanswered() {
  for_wanted([](std::uint16_t, Field& entry) { entry.due = entry.due || entry.state == State::pending; });
}

std::vector<std::uint16_t> Subscription_book::due(const Predicate& possible) const {
  std::vector<std::uint16_t> found;
  for (std::uint16_t field = 0; field < static_cast<std::uint16_t>(fields_.size()); ++field) {
    if (fields_[field].wanted && fields_[field].due && possible(field)) found.push_back(field);
  }
  return found;
}

void Subscription_book::sent(std::uint16_t field) {
  auto& entry = fields_[field];
  entry.due = entry.left = false;
  if (entry.state == State::not_subscribed) set_state(field, State::pending);
}

void Subscription_book::set_state(std::uint16_t field, State state) {
  if (std::exchange(fields_[field].state, state) != state) changed_(field, state);
}

template <class Action>
void Subscription_book::for_wanted(Action action) {
  for (std::uint16_t field = 0; field < static_cast<std::uint16_t>(fields_.size()); ++field) {
    if (fields_[field].wanted) action(field, fields_[field]);
  }
}

}  // namespace xr::com::transport
