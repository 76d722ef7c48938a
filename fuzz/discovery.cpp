#include "xr/com/wire/sd_message.h"

#include <cstddef>
#include <cstdint>
#include <cstdlib>

// A discovery datagram from anybody; what decodes must survive its own encoding.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const auto message = xr::com::wire::decode_sd({data, size});
  if (!message) return 0;
  const auto again = xr::com::wire::decode_sd(xr::com::wire::encode_sd(*message));
  if (!again || again->entries != message->entries) std::abort();
  return 0;
}
