#include "binding/generated/${service.snake}_proxy.h"

/*% for field in service.fields %*/
template class ara::com::internal::proxy::Field<${service.namespace}::${service.name}::${field.field}>;
/*% endfor %*/

namespace ${service.namespace}::proxy {

${service.name}Proxy::${service.name}Proxy(const Handle_type& handle)
    : Proxy{{${service.name}::kName, ${service.name}::kSerialization}, handle.service_instance(), ${service.name}::kDescription}
/*% for field in service.fields %*/
      , ${field.field}{instance(), rport()}
/*% endfor %*/
{}

${service.name}Proxy::~${service.name}Proxy() = default;

}  // namespace ${service.namespace}::proxy
