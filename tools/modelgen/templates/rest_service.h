#pragma once

#include <string_view>

#include "rest/model_resource.h"

namespace ${service.namespace} {

class ${service.name} final : public ModelService {
 public:
  static constexpr std::string_view kName = "${service.name}";
  static constexpr std::string_view kUri = "/${service.name}";

  ${service.name}();
};

}  // namespace ${service.namespace}
