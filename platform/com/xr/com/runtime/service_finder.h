#pragma once

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "xr/com/find_service_handle.h"
#include "xr/com/runtime/service_instance.h"

namespace xr::com::transport {
class Transport;
}

namespace xr::com::runtime {

/// Looks for offered instances of services.
class Service_finder {
 public:
  using Handler = std::function<bool(std::vector<Service_instance>)>;

  explicit Service_finder(std::shared_ptr<transport::Transport> transport);

  /// Calls `handler` on the find thread with the whole list of offered instances at each change of it, and at once if the list is
  /// not empty now. A handler that returns false, or throws, could not take the list: it gets the present one again with the next offer.
  /// No two handlers run at the same time. `instance` is an id's text, or "*" for any.
  /// @throws Invalid_argument_exception for a service that the deployment does not name.
  cpp_binding::Find_service_handle start_find(const std::string& service, const std::string& instance, Handler handler);

 private:
  std::shared_ptr<transport::Transport> transport_;
};

}  // namespace xr::com::runtime
