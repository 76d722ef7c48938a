#include "xr/com/transport/call_table.h"

#include <algorithm>

namespace xr::com::transport {
namespace {

constexpr std::size_t kSessions = 0xFFFF;  // 0 is none

}  // namespace

std::optional<std::uint16_t> Call_table::add(const std::shared_ptr<Call>& call) {
  if (calls_.size() == kSessions) return std::nullopt;
  do {
    ++last_session_;
  } while (last_session_ == 0 || calls_.contains(last_session_));
  calls_.emplace(last_session_, call);
  return last_session_;
}

std::shared_ptr<Call> Call_table::find(std::uint16_t session, std::uint16_t method) const {
  const auto found = calls_.find(session);
  return found == calls_.end() || found->second->method != method ? nullptr : found->second;
}

bool Call_table::remove(std::uint16_t session, const Call* call) {
  const auto found = calls_.find(session);
  if (found == calls_.end() || found->second.get() != call) return false;
  calls_.erase(found);
  return true;
}

Call_table::Calls Call_table::take_gets(std::optional<bool> reliable) {
  return take(
      [&](const Call& call) { return call.kind == cpp_binding::proxy::Method_kind::get && (!reliable || call.reliable == *reliable); });
}

Call_table::Calls Call_table::take_expired(Call::Time now) {
  return take([&](const Call& call) { return call.deadline <= now; });
}

std::optional<Call::Time> Call_table::next_deadline() const {
  const auto first = std::min_element(calls_.begin(), calls_.end(),
                                      [](const auto& one, const auto& other) { return one.second->deadline < other.second->deadline; });
  return first == calls_.end() ? std::nullopt : std::optional{first->second->deadline};
}

template <class Predicate>
Call_table::Calls Call_table::take(Predicate predicate) {
  Calls taken;
  for (auto it = calls_.begin(); it != calls_.end();) {
    if (predicate(*it->second)) {
      taken.push_back(std::move(it->second));
      it = calls_.erase(it);
    } else {
      ++it;
    }
  }
  return taken;
}

}  // namespace xr::com::transport
