#pragma once

#include <string>
#include <unordered_map>

#include "model/enumerations_${service.snake}.h"
#include "model/names.h"

// The words of the vehicle service's enumerations, from value to word and back. Built before `main`, constant from then on.
namespace ${service.namespace} {
/*% for name in service.enumerations %*/

extern const std::unordered_map<datatypes::DT_${service.name}_${name}, std::string> mapDT_${service.name}_${name}_Direct;
extern const std::unordered_map<std::string, datatypes::DT_${service.name}_${name}> mapDT_${service.name}_${name}_Inv;
/*% endfor %*/

}  // namespace ${service.namespace}

namespace trov {
/*% for name in service.enumerations %*/

template <>
struct Names<${service.namespace}::datatypes::DT_${service.name}_${name}> {
  static const auto& Direct() { return ${service.namespace}::mapDT_${service.name}_${name}_Direct; }
  static const auto& Inverse() { return ${service.namespace}::mapDT_${service.name}_${name}_Inv; }
};
/*% endfor %*/

}  // namespace trov
