#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "xr/com/runtime/service_instance.h"

namespace xr::com::transport {

using Instance_list = std::vector<runtime::Service_instance>;

/// One find that an application has running. Its handle owns it; all others look at it weakly, so that it ends with its handle.
class Find {
 public:
  using Handler = std::function<void(Instance_list)>;

  Find(std::string service, std::uint16_t service_id, std::optional<std::uint16_t> instance, Handler handler)
      : service_{std::move(service)}, service_id_{service_id}, instance_{instance}, handler_{std::move(handler)} {}

  const std::string& service() const { return service_; }
  std::uint16_t service_id() const { return service_id_; }
  bool wants(std::uint16_t service_id, std::uint16_t instance) const {
    return service_id == service_id_ && (!instance_ || *instance_ == instance);
  }
  void tell(Instance_list list) const { handler_(std::move(list)); }

 private:
  const std::string service_;
  const std::uint16_t service_id_;
  const std::optional<std::uint16_t> instance_;  // none: any
  const Handler handler_;
};

}  // namespace xr::com::transport
