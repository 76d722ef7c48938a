#include "xr/com/wire/message_stream.h"

#include <algorithm>

namespace xr::com::wire {
namespace {

constexpr std::size_t kReadAhead = 16384;

}  // namespace

std::span<unsigned char> Message_stream::space() {
  if (buffer_.empty()) buffer_.resize(kMaximumMessage + kReadAhead);
  std::copy(buffer_.begin() + static_cast<std::ptrdiff_t>(begin_), buffer_.begin() + static_cast<std::ptrdiff_t>(end_), buffer_.begin());
  end_ -= begin_;
  begin_ = 0;
  return std::span{buffer_}.subspan(end_);
}

Result<Message> Message_stream::next() {
  const auto bytes = Bytes{buffer_}.subspan(begin_, end_ - begin_);
  const auto framed = decode_header(bytes);
  if (!framed) return framed.error();
  if (framed->message_size > bytes.size()) return Error::cut_off;
  begin_ += framed->message_size;
  return Message{framed->header, bytes.subspan(kHeaderSize, framed->message_size - kHeaderSize)};
}

}  // namespace xr::com::wire
