#pragma once

#include <cstdint>

namespace ${service.namespace}::datatypes {
/*% for name, rows in service.enumerations.items() %*/

enum class DT_${service.name}_${name} : std::uint32_t {
/*% for number, word in rows %*/
  ${word} = ${number},
/*% endfor %*/
};
/*% endfor %*/

}  // namespace ${service.namespace}::datatypes
