#pragma once

#include <compare>
#include <cstdint>
#include <string>

#include "xr/com/wire/sd_message.h"

namespace xr::com::transport {

/// One instance of a service, by its numbers on the wire.
struct Instance_key {
  std::uint16_t service;
  std::uint16_t instance;

  // NOLINTNEXTLINE(modernize-use-nullptr): clang-tidy reads the 0 of the generated comparison
  friend auto operator<=>(const Instance_key&, const Instance_key&) = default;
};

/// An instance's number as applications see it: "0x0001".
std::string instance_text(std::uint16_t instance);

/// "127.0.0.1:30490".
std::string to_text(const wire::Endpoint& endpoint);

}  // namespace xr::com::transport
