#include "xr/com/runtime/service_finder.h"

#include <utility>

#include "xr/com/transport/transport.h"

namespace xr::com::runtime {

Service_finder::Service_finder(std::shared_ptr<transport::Transport> transport) : transport_{std::move(transport)} {}

cpp_binding::Find_service_handle Service_finder::start_find(const std::string& service, const std::string& instance, Handler handler) {
  return transport_->start_find(service, instance, std::move(handler));
}

}  // namespace xr::com::runtime
