#include "tools/vehicle/scenario/scenario.h"

namespace vehicle {

const std::vector<BuiltInScenario>& BuiltInScenarios() {
  static const std::vector<BuiltInScenario> scenarios{
@built_in@  };
  return scenarios;
}

}  // namespace vehicle
