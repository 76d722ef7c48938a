#include "xr/com/wire/header.h"

#include <algorithm>
#include <utility>

namespace xr::com::wire {
namespace {

constexpr std::size_t kLengthEnd = 8;  // the length field counts what stands behind itself

}  // namespace

Result<Framed_header> decode_header(Bytes bytes) {
  if (bytes.size() < kHeaderSize) return Error::cut_off;
  const std::size_t length = read32(bytes, 4);
  if (length < kHeaderSize - kLengthEnd) return Error::wrong_length;
  if (length > kMaximumMessage - kLengthEnd) return Error::too_big;
  const Header header{.service = read16(bytes, 0),
                      .method = read16(bytes, 2),
                      .client = read16(bytes, 8),
                      .session = read16(bytes, 10),
                      .protocol_version = bytes[12],
                      .interface_version = bytes[13],
                      .type = static_cast<Message_type>(bytes[14]),
                      .code = bytes[15]};
  return Framed_header{header, kLengthEnd + length};
}

std::array<unsigned char, kHeaderSize> encode_header(const Header& header, std::size_t payloadSize) {
  std::array<unsigned char, kHeaderSize> bytes{};
  write16(bytes, 0, header.service);
  write16(bytes, 2, header.method);
  write32(bytes, 4, static_cast<std::uint32_t>(kHeaderSize - kLengthEnd + payloadSize));
  write16(bytes, 8, header.client);
  write16(bytes, 10, header.session);
  bytes[12] = header.protocol_version;
  bytes[13] = header.interface_version;
  bytes[14] = static_cast<unsigned char>(header.type);
  bytes[15] = header.code;
  return bytes;
}

std::vector<unsigned char> encode_message(const Header& header, Bytes payload) {
  const auto front = encode_header(header, payload.size());
  std::vector<unsigned char> bytes(front.size() + payload.size());
  std::copy(payload.begin(), payload.end(), std::copy(front.begin(), front.end(), bytes.begin()));
  return bytes;
}

Result<Message> take_message(Bytes& rest) {
  const auto bytes = std::exchange(rest, {});
  const auto framed = decode_header(bytes);
  if (!framed) return framed.error();
  if (framed->message_size > bytes.size()) return Error::cut_off;
  rest = bytes.subspan(framed->message_size);
  return Message{framed->header, bytes.subspan(kHeaderSize, framed->message_size - kHeaderSize)};
}

}  // namespace xr::com::wire
