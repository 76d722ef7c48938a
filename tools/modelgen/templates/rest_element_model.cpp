#include "rest/generated/${service.snake}/${element.snake}_model.h"

#include "rest/generated/words.h"

namespace ${service.namespace} {
namespace {

/*% include "rest_properties.cpp" %*/

}  // namespace

constinit const ElementModel k${element.class}Model{"${element.class}", "${resource.uri}", kProperties};

}  // namespace ${service.namespace}
