#pragma once

#include <cstddef>
#include <span>
#include <vector>

#include "xr/com/wire/header.h"

namespace xr::com::wire {

/// Cuts the byte stream of a connection into messages. Holds at most one unfinished message and one read ahead of it.
class Message_stream {
 public:
  /// Room for the next read; never empty. Invalidates the payload of a message taken before.
  std::span<unsigned char> space();

  /// Tells that the first `size` bytes of `space()` were filled.
  void filled(std::size_t size) noexcept { end_ += size; }

  /// The next whole message, which is valid until the next call of `space()`; fails with cut_off when more must be read first, and
  /// with wrong_length or too_big when the stream cannot be followed any more.
  Result<Message> next();

  /// Forgets all bytes, for a new connection.
  void clear() noexcept { begin_ = end_ = 0; }

 private:
  std::vector<unsigned char> buffer_;
  std::size_t begin_ = 0;  // the first byte that no message was cut from
  std::size_t end_ = 0;
};

}  // namespace xr::com::wire
