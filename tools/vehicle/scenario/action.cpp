#include "tools/vehicle/scenario/action.h"

#include "tools/vehicle/values/scalar_json.h"

#include <algorithm>
#include <array>

namespace vehicle {

namespace {

using nlohmann::json;

const json& ObjectAt(const json& value, const Place& place) {
  if (!value.is_object()) throw BadInput{place, "an object is expected, not " + value.dump()};
  return value;
}

void ExpectTrue(const json& value, const Place& place) {
  if (value != true) throw BadInput{place, "true is expected, not " + value.dump()};
}

std::string FieldName(const std::string& name, const Place& place) {
  CodecOf(name, place);
  return name;
}

json::const_iterator OnlyField(const json& value, const Place& place) {
  if (ObjectAt(value, place).size() != 1) throw BadInput{place, "exactly one field is expected"};
  FieldName(value.begin().key(), place / value.begin().key());
  return value.begin();
}

std::pair<std::string, Bytes> FieldAndBytes(const json& value, const Place& place) {
  const auto only = OnlyField(value, place);
  return {only.key(), BytesFromHex(only.value(), place / only.key())};
}

std::vector<std::string> ParseServices(const json& value, const Place& place) {
  auto known = ServiceNames();
  if (value == true) return known;
  const auto name = TextFromJson(value, place);
  if (std::find(known.begin(), known.end(), name) == known.end()) throw BadInput{place, "no such service: " + name};
  return {name};
}

Behaviour ParseBehaviour(const json& value, const Place& place) {
  if (value == "ok") return {};
  if (value == "silent") return {.kind = Behaviour::Kind::silent};
  if (!value.is_object()) throw BadInput{place, R"("ok", "silent" or an object of error, payload and delay is expected)"};
  Behaviour behaviour;
  for (const auto& [name, part] : value.items()) {
    if (name == "delay") {
      behaviour.delay = ParseSeconds(part, place / name);
    } else if (behaviour.kind != Behaviour::Kind::good) {
      throw BadInput{place / name, "an answer is an error or a payload, not both"};
    } else if (name == "error") {
      behaviour.kind = Behaviour::Kind::error;
      behaviour.code = static_cast<unsigned char>(UnsignedFromJson(part, 255, place / name));
    } else if (name == "payload") {
      behaviour.kind = Behaviour::Kind::bytes;
      behaviour.payload = BytesFromHex(part, place / name);
    } else {
      throw BadInput{place / name, "unknown; known are error, payload and delay"};
    }
  }
  return behaviour;
}

FieldFault ParseFieldFault(const std::string& field, const json& value, const Place& place) {
  FieldFault fault{.field = FieldName(field, place), .get = {}, .set = {}, .refusesSubscriptions = {}};
  for (const auto& [name, part] : ObjectAt(value, place).items()) {
    if (name == "get") {
      fault.get = ParseBehaviour(part, place / name);
    } else if (name == "set") {
      fault.set = ParseBehaviour(part, place / name);
    } else if (name == "subscribe") {
      if (part != "ok" && part != "nack") throw BadInput{place / name, R"("ok" or "nack" is expected)"};
      fault.refusesSubscriptions = part == "nack";
    } else {
      throw BadInput{place / name, "unknown; known are get, set and subscribe"};
    }
  }
  return fault;
}

constexpr unsigned kMostRepetitions = 100'000;  // their payloads are made beforehand

RepeatNotification ParseRepetition(const json& value, const Place& place) {
  const auto only = OnlyField(value, place);
  const auto here = place / only.key();
  const auto part = [&](const char* name) -> const json& {
    if (!ObjectAt(*only, here).contains(name)) throw BadInput{here, "record, counter, times and perSecond are expected"};
    return (*only)[name];
  };
  const auto counter = TextFromJson(part("counter"), here / "counter");
  const auto times = UnsignedFromJson(part("times"), kMostRepetitions, here / "times");
  const auto perSecond = UnsignedFromJson(part("perSecond"), kMostRepetitions, here / "perSecond");
  if (perSecond == 0) throw BadInput{here / "perSecond", "more than 0 is expected"};
  auto records = json::array({ObjectAt(part("record"), here / "record")});
  RepeatNotification repetition{.field = only.key(), .payloads = {}, .gap = std::chrono::nanoseconds{1'000'000'000 / perSecond}};
  for (std::uint64_t number = 1; number <= times; ++number) {
    records[0][counter] = number;
    repetition.payloads.push_back(CodecOf(only.key(), here).fromJson(records, here / "record"));
  }
  return repetition;
}

struct ActionKind {
  std::string_view name;
  Action (*parse)(const json& value, const Place& place);
};

constexpr std::array<ActionKind, 12> kKinds{{
    {"set", [](const json& value, const Place& place) -> Action { return ParseValues(value, place); }},
    {"fault", [](const json& value, const Place& place) -> Action { return ParseFaults(value, place); }},
    {"offer", [](const json& value, const Place& place) -> Action { return OfferServices{ParseServices(value, place)}; }},
    {"stopOffer", [](const json& value, const Place& place) -> Action { return StopOfferServices{ParseServices(value, place)}; }},
    {"breakTcp", [](const json& value, const Place& place) -> Action { return ExpectTrue(value, place), BreakTcp{}; }},
    {"crash", [](const json& value, const Place& place) -> Action { return ExpectTrue(value, place), Crash{}; }},
    {"restart", [](const json& value, const Place& place) -> Action { return ExpectTrue(value, place), Restart{}; }},
    {"quit", [](const json& value, const Place& place) -> Action { return ExpectTrue(value, place), Quit{}; }},
    {"payload",
     [](const json& value, const Place& place) -> Action {
       auto [field, bytes] = FieldAndBytes(value, place);
       return SendPayload{std::move(field), std::move(bytes)};
     }},
    {"repeat", [](const json& value, const Place& place) -> Action { return ParseRepetition(value, place); }},
    {"message",
     [](const json& value, const Place& place) -> Action {
       auto [field, bytes] = FieldAndBytes(value, place);
       return SendMessage{std::move(field), std::move(bytes)};
     }},
    {"discovery", [](const json& value, const Place& place) -> Action { return SendDiscovery{BytesFromHex(value, place)}; }},
}};

std::string KnownActions() {
  std::string names;
  for (const auto& kind : kKinds) names += (names.empty() ? "" : ", ") + std::string{kind.name};
  return names;
}

}  // namespace

Action ParseAction(const json& object, const Place& place) {
  if (ObjectAt(object, place).size() != 1) throw BadInput{place, "exactly one action is expected of " + KnownActions()};
  const auto only = object.begin();
  for (const auto& kind : kKinds)
    if (kind.name == only.key()) return kind.parse(only.value(), place / only.key());
  throw BadInput{place / only.key(), "unknown action; known are " + KnownActions()};
}

SetValues ParseValues(const json& values, const Place& place) {
  SetValues parsed;
  for (const auto& [field, records] : ObjectAt(values, place).items())
    parsed.values.emplace_back(field, CodecOf(field, place / field).fromJson(records, place / field));
  return parsed;
}

SetFaults ParseFaults(const json& faults, const Place& place) {
  if (faults == "none") return {.endAll = true, .faults = {}};
  SetFaults parsed;
  for (const auto& [field, fault] : ObjectAt(faults, place).items()) parsed.faults.push_back(ParseFieldFault(field, fault, place / field));
  return parsed;
}

std::chrono::milliseconds ParseSeconds(const json& value, const Place& place) {
  constexpr double kDay = 86'400;
  if (!value.is_number() || value.get<double>() < 0 || value.get<double>() > kDay)
    throw BadInput{place, "seconds from 0 to 86400 are expected, not " + value.dump()};
  return std::chrono::duration_cast<std::chrono::milliseconds>(std::chrono::duration<double>{value.get<double>()});
}

std::vector<std::string> ServiceNames() {
  return {"ChargingManagementCore", "RouteBasedEnergyContents"};
}

}  // namespace vehicle
