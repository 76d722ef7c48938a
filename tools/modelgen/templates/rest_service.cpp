#include "rest/generated/${service.snake}/${service.snake}.h"

/*% for resource in service.resources %*/
#include "rest/generated/${service.snake}/${resource.snake}.h"
/*% endfor %*/

namespace ${service.namespace} {

${service.name}::${service.name}()
    : ModelService{kUri,
                   kName,
                   ${service.description | quote},
                   R"json({"name":"${service.name}","description":${service.description | quote})json",
                   {
/*% for resource in service.resources %*/
                       {${resource.class}::kName, ${resource.class}::kDocument},
/*% endfor %*/
                   }} {}

}  // namespace ${service.namespace}
