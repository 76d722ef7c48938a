#pragma once

#include "binding/proxy/service_info.h"
#include "xr/com/instance_id.h"
#include "xr/com/rport.h"

namespace ara::com::internal::proxy {

/// What all generated proxies share: the instance and the port to it.
class Proxy {
 public:
  Proxy(const Proxy&) = delete;
  Proxy& operator=(const Proxy&) = delete;

  const qe::com::runtime::Instance_id& instance() const { return instance_; }

 protected:
  /// Opens the port and writes the incident of the construction. @throws as `Rport`.
  Proxy(const xr::com::cpp_binding::Service_info& service, const xr::com::runtime::Service_instance& found,
        const xr::com::connector::Service_interface_description& description);
  ~Proxy() = default;

  const xr::com::cpp_binding::proxy::Rport& rport() const { return rport_; }

 private:
  const qe::com::runtime::Instance_id instance_;
  const xr::com::cpp_binding::proxy::Rport rport_;
};

}  // namespace ara::com::internal::proxy
