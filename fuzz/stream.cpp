#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <span>

#include "fuzz/fail.h"
#include "xr/com/wire/message_stream.h"

using namespace xr::com::wire;

namespace {

/// Hands the bytes over in pieces and takes every message that is whole; each must be the one that stands next in the bytes.
void Read(Bytes bytes, std::size_t piece) {
  Message_stream stream;
  for (auto expected = bytes; !bytes.empty();) {
    const auto room = stream.space();
    if (room.empty()) fuzz::Fail("no room is left to read into");
    const auto taken = std::min({piece, bytes.size(), room.size()});
    std::copy_n(bytes.begin(), taken, room.begin());
    stream.filled(taken);
    bytes = bytes.subspan(taken);
    for (;;) {
      const auto message = stream.next();
      if (!message && message.error() == Error::cut_off) break;
      const auto next = take_message(expected);
      if (!message && !next) return;  // nothing behind it can be trusted
      if (!message || !next || message->header != next->header || !std::ranges::equal(message->payload, next->payload)) {
        fuzz::Fail("the stream gives another message than its bytes");
      }
    }
  }
}

}  // namespace

// The bytes of a TCP connection, in the pieces that the first byte asks for.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (size > 0) Read({data + 1, size - 1}, 1 + std::size_t{data[0]} * data[0]);
  return 0;
}
