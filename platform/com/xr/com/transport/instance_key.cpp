#include "xr/com/transport/instance_key.h"

#include <string_view>

namespace xr::com::transport {

std::string instance_text(std::uint16_t instance) {
  constexpr std::string_view kDigits = "0123456789abcdef";
  std::string text = "0x";
  for (int shift = 12; shift >= 0; shift -= 4) text += kDigits[instance >> shift & 0xF];
  return text;
}

std::string to_text(const wire::Endpoint& endpoint) {
  return endpoint.address.to_string() + ':' + std::to_string(endpoint.port);
}

}  // namespace xr::com::transport
