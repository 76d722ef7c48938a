#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "xr/com/instance_id.h"
#include "xr/com/shared_payload.h"

namespace xr::com::cpp_binding::proxy {

enum class Method_kind : std::uint8_t { get, set };

/// One method of a service: the field's alphabetical index and which of its two methods.
struct Method_ref {
  std::uint16_t field;
  Method_kind kind;
};

/// The end of a call. Code 0 is a good answer. Else it is the vehicle's own return code, or one of the local ones.
struct Reply {
  static constexpr unsigned char kConnectionBroken = 129;
  static constexpr unsigned char kSendRefused = 130;
  static constexpr unsigned char kMalformed = 134;
  static constexpr unsigned char kServiceGone = 255;

  unsigned char code = 0;
  std::vector<unsigned char> payload;
};

enum class Subscription_state : std::uint8_t { not_subscribed, pending, subscribed };

/// Receives one field's notifications. Both operations are called on the transport thread, which must not be held up.
class Event_sink {
 public:
  virtual ~Event_sink() = default;

  /// One notification. `status` is the message's return code, 0 for a good one; the payload is valid during the call only.
  virtual void event_updated(std::uint32_t status, const std::vector<unsigned char>& payload) = 0;
  virtual void event_state_changed(Subscription_state state) = 0;
};

/// A call under way. Dropping it abandons the call: its completion does not begin any more after that.
class Pending_call {
 public:
  virtual ~Pending_call() = default;

  /// True as soon as an answer or a failure was handed to the completion.
  virtual bool is_ready() const = 0;
};

/// The client's end of one service instance. It stays valid over loss and return of the instance, also at new endpoints.
/// Every operation may be called on any thread and returns at once.
class Client_port {
 public:
  virtual ~Client_port() = default;

  virtual const std::string& service_name() const = 0;
  virtual const qe::com::runtime::Instance_id& instance() const = 0;

  /// Whether a call can be made now: the instance is offered, and its TCP connection stands if the field is reliable.
  virtual bool is_available(Method_ref method) const = 0;

  /// Wants the field's notifications until `unsubscribe`. The subscription is kept, renewed and made again after a loss.
  virtual void subscribe(std::uint16_t field, std::weak_ptr<Event_sink> sink) = 0;

  /// After the return no new call of the sink begins; one that has begun may still run and keeps the sink alive.
  virtual void unsubscribe(std::uint16_t field, const Event_sink* sink) = 0;

  /// Sends a request from the caller's thread. The completion runs once, on the transport thread, possibly before this returns.
  /// It never runs for a call that nobody answers within 5 s, nor for a set whose connection or service went away.
  /// @throws Service_not_available_exception unless `is_available`; Transport_exception (130) if the socket refuses the message;
  ///         Invalid_argument_exception for a method that the service does not have.
  virtual std::unique_ptr<Pending_call> call(Method_ref method, Shared_payload request, std::function<void(Reply)> completion) = 0;
};

}  // namespace xr::com::cpp_binding::proxy
