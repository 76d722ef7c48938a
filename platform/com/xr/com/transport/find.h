#pragma once

#include <atomic>
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
  /// False, or an exception, when the list could not be taken: it comes again with the next offer.
  using Handler = std::function<bool(Instance_list)>;

  Find(std::string service, std::uint16_t service_id, std::optional<std::uint16_t> instance, Handler handler)
      : service_{std::move(service)}, service_id_{service_id}, instance_{instance}, handler_{std::move(handler)} {}

  const std::string& service() const { return service_; }
  std::uint16_t service_id() const { return service_id_; }
  bool wants(std::uint16_t service_id, std::uint16_t instance) const {
    return service_id == service_id_ && (!instance_ || *instance_ == instance);
  }

  /// Calls the handler; on the find thread.
  void tell(Instance_list list) {
    try {
      if (!handler_(std::move(list))) failed_ = true;
    } catch (...) {
      failed_ = true;
      throw;
    }
  }

  /// Whether a list could not be taken since the last question.
  bool take_failed() { return failed_.exchange(false); }

 private:
  const std::string service_;
  const std::uint16_t service_id_;
  const std::optional<std::uint16_t> instance_;  // none: any
  const Handler handler_;
  std::atomic<bool> failed_{false};
};

}  // namespace xr::com::transport
