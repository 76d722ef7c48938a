#pragma once

#include "tools/vehicle/server/subscriber_list.h"

#include <functional>
#include <string>
#include <vector>

namespace vehicle {

using Bytes = std::vector<unsigned char>;

/// The return codes of an answer that this server gives of itself (AUTOSAR PRS_SOMEIP_00191).
enum class ReturnCode : unsigned char {
  ok = 0x00,
  unknown_service = 0x02,
  unknown_method = 0x03,
  not_ready = 0x04,
  wrong_protocol_version = 0x07,
  wrong_interface_version = 0x08,
  malformed_message = 0x09,
};

/// The answer to a get or a set: a payload, or an error with a code other than 0.
struct Answer {
  unsigned char code = 0;
  Bytes payload;
};

/// Sends the answer; may be kept and called later, on the server's thread. Harmless if the requester is gone.
using Reply = std::function<void(const Answer&)>;

/// What stands behind a server: the values of its fields, and whoever wants to know what happens. All calls on the server's thread.
class FieldHost {
 public:
  virtual ~FieldHost() = default;

  virtual void OnGet(const std::string& field, Reply reply) = 0;
  virtual void OnSet(const std::string& field, const Bytes& payload, Reply reply) = 0;
  /// What a field's notifier sends.
  virtual Bytes PresentValue(const std::string& field) = 0;
  virtual bool AcceptsSubscription(const std::string& field) = 0;

  virtual void OnOffered(const std::string& service, bool offered) = 0;
  virtual void OnSubscribed(const Subscription& subscription, bool isNew) = 0;
  virtual void OnSubscriptionRefused(const std::string& field, const std::string& reason) = 0;
  /// `reason` is one of "stopped", "expired", "rebooted", "disconnected", "withdrawn".
  virtual void OnUnsubscribed(const Subscription& subscription, const std::string& reason) = 0;
  virtual void OnConnection(const Endpoint& peer, bool open) = 0;
};

}  // namespace vehicle
