#pragma once

#include <cstdint>
#include <memory>
#include <span>
#include <string_view>

#include "xr/com/client_port.h"
#include "xr/com/runtime/service_instance.h"

namespace xr::com::connector {

/// What a generated proxy knows of its service: the counts, the name, and the names of its fields in alphabetical order.
struct Service_interface_description {
  std::uint16_t events;
  std::uint16_t methods;
  std::string_view service;
  std::span<const std::string_view> fields;
  std::span<const std::string_view> settable;
};

}  // namespace xr::com::connector

namespace xr::com::cpp_binding::proxy {

/// The required port of a proxy: the client's end of the instance that a find gave.
class Rport {
 public:
  /// @throws Invalid_argument_exception if the description does not agree with the deployment of that service;
  ///         Service_not_available_exception if the runtime has ended; Transport_exception if no socket can be had.
  Rport(const runtime::Service_instance& instance, const connector::Service_interface_description& description);

  std::shared_ptr<Client_port> port() const { return port_; }

 private:
  std::shared_ptr<Client_port> port_;
};

}  // namespace xr::com::cpp_binding::proxy
