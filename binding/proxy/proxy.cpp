#include "binding/proxy/proxy.h"

#include "binding/incidents/service_incidents.h"
#include "binding/incidents/target.h"

namespace ara::com::internal::proxy {

Proxy::Proxy(const xr::com::cpp_binding::Service_info& service, const xr::com::runtime::Service_instance& found,
             const xr::com::connector::Service_interface_description& description)
    : instance_{found.instance}, rport_{found, description} {
  xr::com::log::target::Dlt::trace(xr::com::cpp_binding::log::incidents::Service_proxy_constructed{
      {{service.name}, instance_.value()}, service.properties.recordLengthFieldSize == 4, true});
}

}  // namespace ara::com::internal::proxy
