#include "xr/com/wire/message_stream.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <span>

// The bytes of a TCP connection, in the pieces that the first byte asks for.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (size == 0) return 0;
  const std::size_t piece = 1 + data[0];
  xr::com::wire::Message_stream stream;
  for (std::span rest{data + 1, size - 1}; !rest.empty();) {
    const auto room = stream.space();
    const auto taken = std::min({piece, rest.size(), room.size()});
    std::copy_n(rest.begin(), taken, room.begin());
    stream.filled(taken);
    rest = rest.subspan(taken);
    for (;;) {
      const auto message = stream.next();
      if (message) continue;
      if (message.error() == xr::com::wire::Error::cut_off) break;
      return 0;
    }
  }
  return 0;
}
