#include "xr/com/find_service_handle.h"

#include <utility>

#include "xr/com/transport/find.h"

namespace xr::com::cpp_binding {

Find_service_handle::Find_service_handle(std::shared_ptr<transport::Find> find) noexcept : find_{std::move(find)} {}

}  // namespace xr::com::cpp_binding
