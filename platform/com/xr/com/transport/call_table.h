#pragma once

#include <atomic>
#include <chrono>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <unordered_map>
#include <utility>
#include <vector>

#include "xr/com/client_port.h"
#include "xr/com/wire/sd_message.h"

namespace xr::com::transport {

/// One request under way.
struct Call {
  using Time = std::chrono::steady_clock::time_point;

  std::uint16_t method = 0;
  cpp_binding::proxy::Method_kind kind{};
  bool reliable = false;
  wire::Endpoint destination;  ///< where a request that is not reliable went
  Time deadline{};
  std::function<void(cpp_binding::proxy::Reply)> completion;
  std::atomic<bool> ready{false};

  /// To be called once, by whoever took the call off the table, and with no lock held.
  void complete(cpp_binding::proxy::Reply reply) {
    ready = true;  // first: the completion wakes those who ask
    std::exchange(completion, nullptr)(std::move(reply));
  }
};

/// The requests under way of one instance, each under the session id that its answer will carry. Not safe for threads of itself: the
/// owner's mutex guards it.
class Call_table {
 public:
  using Calls = std::vector<std::shared_ptr<Call>>;

  static constexpr std::chrono::seconds kLifetime{5};

  /// Enters a call under the next free session id; nothing if there is none.
  std::optional<std::uint16_t> add(const std::shared_ptr<Call>& call);

  /// The call that an answer with this session and method belongs to, or none; it stays in the table.
  std::shared_ptr<Call> find(std::uint16_t session, std::uint16_t method) const;

  /// Whether the call was still there.
  bool remove(std::uint16_t session, const Call* call);

  /// Takes the gets out, of all or of those that went over one protocol. Sets stay: nobody can tell whether they were carried out.
  Calls take_gets(std::optional<bool> reliable = std::nullopt);

  /// Takes out what has lived for `kLifetime`.
  Calls take_expired(Call::Time now);

  std::optional<Call::Time> next_deadline() const;

 private:
  template <class Predicate>
  Calls take(Predicate predicate);

  std::unordered_map<std::uint16_t, std::shared_ptr<Call>> calls_;
  std::uint16_t last_session_ = 0;
};

}  // namespace xr::com::transport
