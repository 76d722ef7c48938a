#include "zuva/change_scope.h"

#include <utility>

#include "zuva/base_x_object.h"

namespace zuva {

ChangeScope::ChangeScope(BaseXObject& object) : object_{object}, lock_{object.mutex_} {
  ++object_.scopeDepth_;
}

ChangeScope::~ChangeScope() {
  if (--object_.scopeDepth_ == 0 && std::exchange(object_.touched_, false)) object_.PublishChanged();
}

}  // namespace zuva
