#include "bench/writes.h"

#include <nlohmann/json.hpp>

#include <algorithm>

namespace bench {

namespace {

using nlohmann::json;

const std::vector<Write::Kind>& Kinds() {
  static const std::vector<Write::Kind> kinds{
      {"/ChargingManagementCore/valueControls", "currentValue", {1000, 2000}, 200, 3001, 400},
      {"/ChargingManagementCore/switchControls", "switchValue", {"off", "permanent"}, 200, "sometimes", 400},
      {"/ChargingManagementCore/views", "visibility", {"requestedViewVisible", "requestedViewObstructed"}, 200, "hidden", 400},
      {"/ChargingManagementCore/pastErrorInformation", "confirmedByUser", {true, false}, 200, "yes", 400},
      {"/FactoryReset/resets", "isFactoryDefault", {true, true}, 202, false, 400}};
  return kinds;
}

/// The objects of the kind that take its values.
json Elements(const Program& bridge, const Write::Kind& kind) {
  auto elements = json::array();
  for (const auto& element : bridge.FirstElements(kind.resource))
    if (element.value("type", "") != "immediateActionStartStopCharging") elements.push_back(element);  // it takes actions only
  return elements;
}

}  // namespace

Write::Write(const Kind& kind, const json& element, std::uint16_t port) : kind_{kind}, id_{element.at("id")} {
  const auto request = [&](const json& value) { return PostRequest(element.at("uri").get<std::string>(), port, {{kind.property, value}}); };
  requests_ = {request(kind.values[0]), request(kind.values[1]), request(kind.bad)};
}

bool Write::IsRight(std::size_t time, const Answer& answer) const {
  if (IsBad(time)) return answer.Status() == kind_.refused;
  if (answer.Status() != kind_.accepted) return false;
  if (kind_.accepted != 200) return true;
  const auto element = json::parse(answer.Body());
  return element.at("id") == id_ && std::count(kind_.values.begin(), kind_.values.end(), element.at(kind_.property)) == 1;
}

std::vector<Write> WritesOfAllKinds(const Program& bridge, std::size_t writers) {
  const auto& kinds = Kinds();
  std::vector<json> elements;
  elements.reserve(kinds.size());
  for (const auto& kind : kinds) elements.push_back(Elements(bridge, kind));
  std::vector<Write> writes;
  while (writes.size() < writers) {
    const auto kind = writes.size() % kinds.size();
    const auto& ofKind = elements[kind];
    writes.emplace_back(kinds[kind], ofKind[writes.size() / kinds.size() % ofKind.size()], bridge.Port());
  }
  return writes;
}

}  // namespace bench
