#pragma once

#include <memory>

namespace xr::com::transport {
class Find;
}

namespace xr::com::cpp_binding {

/// Keeps a find running. Destroying it ends the find: no further callback begins; one that runs is not waited for.
class Find_service_handle {
 public:
  Find_service_handle() = default;
  explicit Find_service_handle(std::shared_ptr<transport::Find> find) noexcept;
  Find_service_handle(Find_service_handle&&) noexcept = default;
  Find_service_handle& operator=(Find_service_handle&&) noexcept = default;

 private:
  std::shared_ptr<transport::Find> find_;
};

}  // namespace xr::com::cpp_binding
