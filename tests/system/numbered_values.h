#pragma once

#include <nlohmann/json.hpp>

#include <string>
#include <vector>

namespace system_test {

/// What a vehicle tells of one field, and where a client then sees it.
struct NumberedValue {
  std::string field;
  nlohmann::json record;
  std::string resource;  ///< the path of the REST resource
  std::string type;      ///< of the element in it; empty where elements have none
  nlohmann::json members;
};

/// A value for each of the sixteen fields that the bridge reads, of both services and both protocols. In each field the values of two
/// numbers that follow one another differ.
std::vector<NumberedValue> NumberedValues(unsigned number);

/// The scenario of a vehicle that has these values from its start on.
nlohmann::json NumberedScenario(unsigned number);

}  // namespace system_test
