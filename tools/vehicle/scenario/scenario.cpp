#include "tools/vehicle/scenario/scenario.h"

#include "tools/vehicle/values/scalar_json.h"

#include <nlohmann/json.hpp>

#include <fstream>
#include <iterator>

namespace vehicle {

namespace {

using nlohmann::json;

Scenario::Step ParseStep(json step, const Place& place) {
  if (!step.is_object() || !step.contains("at")) throw BadInput{place, R"(a step is an object of "at" and one action)"};
  const auto at = ParseSeconds(step["at"], place / "at");
  step.erase("at");
  return {at, ParseAction(step, place)};
}

std::vector<Scenario::Step> ParseSteps(const json& value, const Place& place) {
  if (!value.is_array()) throw BadInput{place, "an array is expected"};
  std::vector<Scenario::Step> steps;
  for (std::size_t i = 0; i < value.size(); ++i) {
    steps.push_back(ParseStep(value[i], place / i));
    if (i > 0 && steps[i].at < steps[i - 1].at) throw BadInput{place / i / "at", "earlier than the step before"};
  }
  return steps;
}

double ParseNumber(const json& value, double minimum, double maximum, const Place& place) {
  if (value.is_number() && value.get<double>() >= minimum && value.get<double>() <= maximum) return value.get<double>();
  throw BadInput{place, "a number from " + std::to_string(minimum) + " to " + std::to_string(maximum) + " is expected"};
}

SessionSettings ParseSession(const json& value, const Place& place) {
  if (!value.is_object()) throw BadInput{place, "an object is expected"};
  SessionSettings settings;
  for (const auto& [name, part] : value.items()) {
    if (name == "startSoc") {
      settings.startSoc = ParseNumber(part, 0, 100, place / name);
    } else if (name == "targetSoc") {
      settings.targetSoc = ParseNumber(part, 0, 100, place / name);
    } else if (name == "power") {
      settings.power = ParseNumber(part, 1, 1000, place / name);
    } else if (name == "ambient") {
      settings.ambient = ParseNumber(part, -40, 60, place / name);
    } else if (name == "dc") {
      settings.dc = BoolFromJson(part, place / name);
    } else {
      throw BadInput{place / name, "unknown; known are startSoc, targetSoc, power, ambient and dc"};
    }
  }
  return settings;
}

std::string ReadFile(const std::string& path) {
  std::ifstream file{path, std::ios::binary};
  std::string text{std::istreambuf_iterator<char>{file}, {}};
  if (!file) throw BadInput{"cannot be read"};
  return text;
}

std::string_view BuiltIn(const std::string& name) {
  std::string known;
  for (const auto& scenario : BuiltInScenarios()) {
    if (scenario.name == name) return scenario.text;
    known += " " + std::string{scenario.name};
  }
  throw BadInput{"no such scenario; built in are" + known};
}

}  // namespace

Scenario ParseScenario(std::string_view text) try {
  const auto root = json::parse(text);
  const Place top;
  if (!root.is_object()) throw BadInput{top, "an object is expected"};
  Scenario scenario;
  for (const auto& [name, value] : root.items()) {
    const auto place = top / name;
    if (name == "values") {
      scenario.values = ParseValues(value, place);
    } else if (name == "faults") {
      scenario.faults = ParseFaults(value, place);
    } else if (name == "steps") {
      scenario.steps = ParseSteps(value, place);
    } else if (name == "session") {
      scenario.session = ParseSession(value, place);
    } else if (name == "repeatEvery") {
      scenario.repeatEvery = ParseSeconds(value, place);
    } else if (name != "description") {
      throw BadInput{place, "unknown; known are description, values, faults, steps, repeatEvery and session"};
    }
  }
  if (scenario.repeatEvery) {
    if (scenario.repeatEvery->count() == 0) throw BadInput{top / "repeatEvery", "more than 0 is expected"};
    if (!scenario.steps.empty() && *scenario.repeatEvery < scenario.steps.back().at)
      throw BadInput{top / "repeatEvery", "shorter than the time line"};
  }
  return scenario;
} catch (const json::exception& error) {
  throw BadInput{std::string{error.what()}};
}

Scenario LoadScenario(const std::string& fileOrName) try {
  const bool isFile = fileOrName.find('/') != std::string::npos || fileOrName.ends_with(".json");
  return isFile ? ParseScenario(ReadFile(fileOrName)) : ParseScenario(BuiltIn(fileOrName));
} catch (const BadInput& error) {
  throw BadInput{fileOrName + ": " + error.what()};
}

}  // namespace vehicle
