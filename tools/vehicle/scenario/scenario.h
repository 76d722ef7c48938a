#pragma once

#include "tools/vehicle/scenario/action.h"
#include "tools/vehicle/session/charging_session.h"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace vehicle {

/// What the vehicle plays: the values and faults at its start, and a time line of actions.
///
///   { "description": "…", "values": {…}, "faults": {…},
///     "steps": [ {"at": 2.0, "set": {"views": […]}}, … ], "repeatEvery": 20.0,
///     "session": { "startSoc": 14, "targetSoc": 80, "power": 150, "ambient": 7, "dc": true } }
///
/// All members may be left out. Times are in seconds from the start, and do not fall; with "repeatEvery" the steps start again
/// after that many seconds. A "session" is a model of a car at a charger that moves values by itself, beside the steps.
struct Scenario {
  struct Step {
    std::chrono::milliseconds at;
    Action action;
  };
  SetValues values;
  SetFaults faults;
  std::vector<Step> steps;
  std::optional<std::chrono::milliseconds> repeatEvery;
  std::optional<SessionSettings> session;
};

/// Throws BadInput with place and reason; a text that is no JSON with line and column.
Scenario ParseScenario(std::string_view text);

/// A scenario from a file, if the argument has a slash or ends in ".json", else the built-in one of that name.
/// Throws BadInput with file, place and reason.
Scenario LoadScenario(const std::string& fileOrName);

struct BuiltInScenario {
  std::string_view name;
  std::string_view text;
};
/// The files of the folder tools/vehicle/scenarios, by their names without ".json".
const std::vector<BuiltInScenario>& BuiltInScenarios();

}  // namespace vehicle
