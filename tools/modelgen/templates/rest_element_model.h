#pragma once

#include "rest/model_element.h"

namespace ${service.namespace} {

extern const ElementModel k${element.class}Model;

}  // namespace ${service.namespace}
