#include "model/name_tables_${service.snake}.h"

namespace ${service.namespace} {
namespace {

template <class Enumeration>
std::unordered_map<std::string, Enumeration> Inverted(const std::unordered_map<Enumeration, std::string>& direct) {
  std::unordered_map<std::string, Enumeration> inverse;
  for (const auto& [value, word] : direct) inverse.emplace(word, value);
  return inverse;
}

}  // namespace
/*% for name, rows in service.enumerations.items() %*/

/*% set enumeration = "datatypes::DT_" ~ service.name ~ "_" ~ name %*/
const std::unordered_map<${enumeration}, std::string> mapDT_${service.name}_${name}_Direct{
/*% for number, word in rows %*/
    {${enumeration}::${word}, "${word}"},
/*% endfor %*/
};
const std::unordered_map<std::string, ${enumeration}> mapDT_${service.name}_${name}_Inv =
    Inverted(mapDT_${service.name}_${name}_Direct);
/*% endfor %*/

}  // namespace ${service.namespace}
