#pragma once

#include "tools/vehicle/values/field_codec.h"

#include <nlohmann/json_fwd.hpp>

#include <chrono>
#include <optional>
#include <string>
#include <utility>
#include <variant>
#include <vector>

namespace vehicle {

/// What the vehicle does with a get or a set of a field.
struct Behaviour {
  enum class Kind {
    good,    ///< a get gives the value held; a set takes the value and answers with it
    silent,  ///< no answer
    error,   ///< an error answer with `code`, which changes nothing
    bytes    ///< a good answer with `payload` in place of a value, which changes nothing
  };
  Kind kind = Kind::good;
  unsigned char code = 0;
  Bytes payload{};
  std::chrono::milliseconds delay{0};
};

/// Faults of one field; what is left out stays as it is.
struct FieldFault {
  std::string field;
  std::optional<Behaviour> get, set;
  std::optional<bool> refusesSubscriptions;
};

// The actions of scenarios and of commands, each with its form in JSON.

/// {"set": {"views": [{"type": "popup", …}], …}}: new values, told to the subscribers.
struct SetValues {
  std::vector<std::pair<std::string, Bytes>> values;
};
/// {"fault": {"views": {"set": "silent", "get": {"error": 32, "delay": 0.5}, "subscribe": "nack"}}}; "ok" ends a fault, {"fault": "none"}
/// all.
struct SetFaults {
  bool endAll = false;
  std::vector<FieldFault> faults;
};
/// {"offer": "ChargingManagementCore"}, {"offer": true} for both services.
struct OfferServices {
  std::vector<std::string> services;
};
/// {"stopOffer": …} likewise.
struct StopOfferServices {
  std::vector<std::string> services;
};
/// {"breakTcp": true}: all TCP connections end, the offers stand.
struct BreakTcp {};
/// {"crash": true}: the process kills itself; no goodbye, nothing written any more.
struct Crash {};
/// {"restart": true}: the process begins anew from its command line; no goodbye.
struct Restart {};
/// {"quit": true}: an orderly end.
struct Quit {};
/// {"payload": {"views": "00 00 00 02 ff ff"}}: a notification with these bytes as payload, which are also the value held from now on.
struct SendPayload {
  std::string field;
  Bytes payload;
};
/// {"repeat": {"valueIndications": {"record": {"type": …}, "counter": "currentValue", "times": 10000, "perSecond": 10000}}}: notifications
/// of this one record, in which the member "counter" counts from 1 to "times". The event "repeated" tells the end.
struct RepeatNotification {
  std::string field;
  std::vector<Bytes> payloads;
  std::chrono::nanoseconds gap{};
};
/// {"message": {"views": "…"}}: bytes that stand for a whole message, to the field's subscribers over the field's protocol.
struct SendMessage {
  std::string field;
  Bytes bytes;
};
/// {"discovery": "…"}: bytes to the discovery group.
struct SendDiscovery {
  Bytes bytes;
};

using Action = std::variant<SetValues, SetFaults, OfferServices, StopOfferServices, BreakTcp, Crash, Restart, Quit, SendPayload,
                            RepeatNotification, SendMessage, SendDiscovery>;

/// An action from an object with exactly one member. Throws BadInput.
Action ParseAction(const nlohmann::json& object, const Place& place);

/// The values and faults of a scenario's beginning have the same form as those of its actions.
SetValues ParseValues(const nlohmann::json& values, const Place& place);
SetFaults ParseFaults(const nlohmann::json& faults, const Place& place);

/// Seconds, with fractions. Throws BadInput below 0 and beyond a day.
std::chrono::milliseconds ParseSeconds(const nlohmann::json& value, const Place& place);

/// The short names of the two services, as scenarios use them: the last part of the full names.
std::vector<std::string> ServiceNames();

}  // namespace vehicle
