#pragma once

#include <memory>
#include <string>

#include "xr/com/instance_id.h"

namespace xr::com::connector {
struct Service_interface_description;
}

namespace xr::com::cpp_binding::proxy {
class Client_port;
}

namespace xr::com::runtime {

/// Makes the client port of one found instance; what stands behind it is the transport's own business.
class Port_source {
 public:
  virtual ~Port_source() = default;
  virtual std::shared_ptr<cpp_binding::proxy::Client_port> open(const connector::Service_interface_description& description) = 0;
};

/// One offered instance of a service, as a find reports it.
struct Service_instance {
  std::string service;
  qe::com::runtime::Instance_id instance;
  std::shared_ptr<Port_source> opaque;
};

}  // namespace xr::com::runtime
