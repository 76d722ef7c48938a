#include "xr/com/rport.h"

#include "xr/com/exceptions.h"

namespace xr::com::cpp_binding::proxy {

Rport::Rport(const runtime::Service_instance& instance, const connector::Service_interface_description& description) {
  if (!instance.opaque) throw Invalid_argument_exception{"Not an instance that a find gave"};
  port_ = instance.opaque->open(description);
}

}  // namespace xr::com::cpp_binding::proxy
