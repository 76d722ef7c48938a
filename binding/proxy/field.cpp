#include "binding/proxy/field.h"

#include "xr/com/execution/static_thread_pool.h"
#include "xr/com/runtime/component_singleton.h"

namespace ara::com::internal::proxy::detail {

std::shared_ptr<xr::com::Executor> runtime_executor() {
  return xr::com::runtime::Component_singleton::get_thread_pool_factory().pool();
}

}  // namespace ara::com::internal::proxy::detail
